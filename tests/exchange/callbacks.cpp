// What the panel may do inside a callback: everything.
#include "tst_exchange.h"

void callbackRows()
{
    row("the value from before shows inside the report of a read", R"(
        monitor D_W 10, M_bit 3, TX 5 : 3; send : *; on M_bit 3 do get M_W 0 : 0000
        reply data FF00 => M_bit 3; send : *; on D_W 10 do get D_W 10 : 0000
        reply data 7856 => D_W 10; get D_W 10 : 7856; send : *; on TX 5 do get TX 5 : 00
        reply data 2000 => TX 5; get TX 5 : 01)");
    row("the value from before shows inside the report of a write", R"(
        monitor D_W 10, M_bit 3 : 2; on D_W 10 do get D_W 10 : 0000
        write D_W 10 = 0100 => D_W 10; on M_bit 3 do get M_bit 3 : 00
        write M_bit 3 = 01 => M_bit 3; on TX 5 do get TX 5 : 00; write TX 5 = 01 => TX 5)");
    row("the controller's value shows inside the report of a failed write", R"(
        monitor D_W 10, M_bit 3 : 2; write D_W 10 = 7856 => D_W 10
        on D_W 10 do get D_W 10 : 0000; fail => D_W 10; write M_bit 3 = 01 => M_bit 3
        on M_bit 3 do get M_bit 3 : 00; fail => M_bit 3; write TX 5 = 01 => TX 5
        on TX 5 do get TX 5 : 00; fail => TX 5)");
    row("the values show when a condition read is told", R"(condition D_W 10; plc D 10 = 3412
        on done 0 do get D_W 10 : 3412; serve 1 : rD10 => done 0)");
    row("the new value shows when a bit's write is settled", R"(monitor M_bit 3 : 1
        write M_bit 3 = 01 => M_bit 3; on M_bit 3 do get M_bit 3 : 01; serve 1 : oM0 => M_bit 3)");
    row("a recipe unit is filled when it is announced, the next is not", R"(
        recipe D_W 10 x2 @3 : 1; plc D 10 = 3412 7856; request 0 1
        on RWI 3 do buffer 3 x2 : 3412 0000; serve 1 : rD10x2 => RWI 3, RWI 4)");
    row("a neighbouring bit written inside a report stays written", R"(monitor M_bit 0 : 1
        on M_bit 0 do write M_bit 1 = 01; write M_bit 0 = 01 => M_bit 0; get M_bit 0 x2 : 01 01)");
    row("a write made inside the report of a failed write outlives it", R"(monitor D_W 10 : 1
        write D_W 10 = 7856 => D_W 10; send : *; on D_W 10 do write D_W 10 = 0900; fail => *
        send : wa 1400 00 02 0900)");
    row("monitoring ended inside a report ends the reports of that word", R"(
        monitor M_bit 0 x3, M_W 0 : 1; send : *; on M_bit 0 do monitor : 0
        reply data 0700 => M_bit 0)");
    row("a condition read asked for at the failure of another stays", R"(condition D_W 10
        send : *; on done -1 do condition D_W 10 & condition D_W 20; fail => done -1
        serve 3 : rD10 rD20 - => done 0)");
    row("the end of a condition read is told before it is removed: what waits is not read twice",
        R"(condition D_W 10, D_W 20, D_W 10; on done 0 do condition D_W 20
        serve 1 : rD10 => done 0; serve 4 : rD20 rD10 - - => done 0; condition D_W 10, D_W 10
        on done 0 do condition D_W 10; serve 1 : rD10 => done 0; serve 2 : rD10 - => done 0)");
    row("started over at the end of a condition read: what was asked since stays", R"(
        condition D_W 10, D_W 11, D_W 10; on done 0 do init 7#0#0#3#64 & condition D_W 10
        serve 1 : rD10 => done 0; serve 2 : rD10 - => done 0; condition D_W 10; send : *
        on done -1 do init 7#0#0#3#64 & condition D_W 10; fail => *; serve 2 : rD10 - => done 0)");
    row("the next frame asked for inside the end of a condition read: no item is lost or repeated",
        R"(condition D_W 10, D_W 20, D_W 10; on done 0 do send : ra 1400 00 02
        serve 1 : rD10 => done 0; send : ra 1400 00 02; reply plc
        serve 3 : rD20 - rD10 => done 0; condition D_W 10
        on done 0 do write D_W 30 = 0100 & send : wa 3C00 00 02 0100; serve 1 : rD10 => done 0
        send : wa 3C00 00 02 0100; reply ok; serve 2 : - -)");
    row("another monitored set inside the report of a cyclic read starts at its first", R"(
        monitor D_W 10, D_W 500 : 2; send : *
        on D_W 10 do init 7#0#0#3#64 & monitor D_W 20, D_W 600 : 2; reply data 0100 => D_W 10
        serve 3 : rD20 rD600 rD20)");
    row("a recipe registered inside an announcement keeps what it has not been read for", R"(
        recipe D_W 10 x3 @3 : 1; plc D 10 = 0100 0200 0300; request 0 1
        on RWI 3 do recipe D_W 10 x3 @3 : 1; serve 1 : rD10x3 => RWI 3
        buffer 3 x3 : 0100 0000 0000)");
    row("the exchange ended inside an announcement ends the copy", R"(recipe D_W 10 x3 @3 : 1
        plc D 10 = 0100 0200 0300; request 0 1; send : *
        on RWI 3 do reply none : 8 & reply none : 8 & reply none : 2; reply plc => RWI 3
        requested : 0 0; send : -)");
    row("the exchange ended inside the report before a recipe's copy", R"(monitor D_W 10 : 1
        recipe D_W 10 x2 @3 : 1; request 0 1; send : *; on D_W 10 do init 7#0#0#3#64
        reply data 01000200 => D_W 10; buffer 3 x2 : 0000 0000)");
    row("the exchange ended inside the report of a failure, the next one is spared", R"(
        monitor D_W 10 : 1; write D_W 10 = 0100 => D_W 10; write D_W 11 = 0200; send : *
        on D_W 10 do reply ok & send : wa 1600 00 02 0200; fail => D_W 10
        send : wa 1600 00 02 0200; reply ok; send : ra 1400 00 02)");
    row("the exchange ended inside the report of a reply, the next one is spared", R"(
        monitor D_W 10, D_W 500 : 2; send : *
        on D_W 10 do reply data 0100 & send : ra E803 00 02; reply data 0100 => *
        send : ra E803 00 02)");

    // Every export in every callback; afterwards the driver runs empty and starts over.
    const QString occasions(
        "%1; write D_W 10 = 0100 0200 0300 => *|%1; write M_bit 3 = 010101 => *|"
        "%1; write TX 5 = 010101 => *|%1; plc D 10 = 0100 0200 0300; serve 3 : * => *|"
        "%1; plc TX 0 = FFFF; serve 3 : * => *|"
        "write D_W 10 = 0100 0200 0300 => *; %1; fail : * => *|"
        "write TX 5 = 01 => *; %1; fail : * => *|"
        "write M_bit 3 = 010101 => *; serve 1 : *; %1; serve 1 : * => *|"
        "monitor : 0; request 0 1; %1; serve 1 : * => *|"
        "monitor : 0; request 0 1; serve 1 : * => *; %1; serve 1 : * => *|"
        "condition D_W 500 x3; %1; fail : * => *");
    const QString actions(
        "get M_W 0 x400 : *|write M_bit 4 = 00|flood write 600|flood condition 600|"
        "monitor : *|monitor D_W 0 x300, M_bit 0 x99, TX 5 x99 : *|"
        "recipe TX 9 x3 @4000, D_W 10 x9 @9, M_bit 40 x9 @99 : *|recipe XX 1 : *|"
        "request 1 0|init 7#1#0#0#0|init 7#0#0#3#64 & get N_W 0 x4 : *|send : *|"
        "reply none : *|reply data 01000200 : *");
    for (const QString &occasion : occasions.split('|')) {
        for (const QString &action : actions.split('|'))
            row(occasion + ", " + action,
                "monitor D_W 10 x3, M_bit 3 x3, TX 5 x3 : 3;"
                "recipe D_W 10 @1, D_W 11 x2 @2, M_bit 3 x3 @7 : 3;" +
                    QString(occasion).replace("%1", "on * do " + action) + "; request 0 0;" +
                    // Nothing of what was under way is stored behind a new start.
                    (action.startsWith("init") ? "get N_W 0 x4 : 00000000 00000000; send : -;"
                                               : "") +
                    "monitor : 0; drain => *; init 7#0#0#3#64; plc D 10 = 3412; monitor D_W 10 : 1;"
                    "serve 1 : rD10 => D_W 10; write D_W 20 = 0100; condition D_W 30;"
                    "serve 3 : wD20 rD30 rD10 => done 0");
    }
}
