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
        write D_W 10 = 7856 => D_W 10; send : *; on D_W 10 do write D_W 10 = 0900
        fail => D_W 10, D_W 10
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
        on done -1 do init 7#0#0#3#64 & condition D_W 10; fail => done -1
        serve 2 : rD10 - => done 0)");
    row("the next frame asked for inside the end of a condition read: no item is lost or repeated",
        R"(condition D_W 10, D_W 20, D_W 10; on done 0 do send : ra 1400 00 02
        serve 1 : rD10 => done 0; send : ra 1400 00 02; reply plc
        serve 3 : rD20 - rD10 => done 0; condition D_W 10
        on done 0 do write D_W 30 = 0100 & send : wa 3C00 00 02 0100; serve 1 : rD10 => done 0
        send : wa 3C00 00 02 0100; reply ok; serve 2 : - -)");
    row("a whole exchange inside the end of a condition read ends it: what waits is not lost", R"(
        condition D_W 10, D_W 20, D_W 10; on done 0 do send : ra 1400 00 02 & reply plc
        serve 1 : rD10 => done 0, done 0; serve 4 : rD20 - rD10 - => done 0)");
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
        on D_W 10 do reply data 0100 & send : ra E803 00 02
        reply data 0100 => D_W 10, D_W 10
        send : ra E803 00 02)");

    // Every export inside the first of several reports: either all of them come, or what was done
    // ends them. Afterwards the driver runs empty and starts over. Before, step, reports, ended by:
    const char *const occasions[][4] = {
        {"", "write D_W 10 = 0100 0200 0300", "D_W 10, D_W 11, D_W 12", "monitor :"},
        {"", "write M_bit 3 = 010101", "M_bit 3, M_bit 4, M_bit 5", "monitor :"},
        {"", "write TX 5 = 010101", "TX 5, TX 6, TX 7", ""},
        {"plc D 10 = 0100 0200 0300; serve 1 : rM0", "serve 1 : rD10x3", "D_W 10, D_W 11, D_W 12",
         "monitor :"},
        {"plc TX 0 = FFFF; serve 2 : rM0 rD10x3", "serve 1 : rTX0x3", "TX 5, TX 6, TX 7",
         "monitor :"},
        {"write D_W 10 = 0100 0200 => D_W 10, D_W 11", "fail", "D_W 10, D_W 11", "monitor :"},
        {"write TX 5 = 01 => TX 5", "fail", "TX 5", ""},
        {"write M_bit 3 = 010101 => M_bit 3, M_bit 4, M_bit 5; serve 1 : rM0", "serve 1 : wM0",
         "M_bit 3, M_bit 4, M_bit 5", "monitor :"},
        {"monitor : 0; request 0 1", "serve 1 : rD10x3", "RWI 1, RWI 2, RWI 3", "recipe"},
        {"monitor : 0; request 0 1; serve 1 : rD10x3 => RWI 1, RWI 2, RWI 3", "serve 1 : rM0",
         "RWI 7, RWI 8, RWI 9", "recipe"},
        {"condition D_W 500 x3", "fail", "done -1", ""}};
    const QString actions(
        "get M_W 0 x400 : *|write D_W 500 x1000|flood condition 600|monitor : 0|"
        "monitor D_W 0 x300, M_bit 3 x3, TX 5 x99 : *|recipe XX 1 : 0|"
        "recipe TX 9 x3 @4000, D_W 10 x9 @9, M_bit 40 x9 @99 : 3|request 1 0|send : *|"
        "init 7#1#0#0#0|init 7#0#0#3#64 & get N_W 0 x4 : 00000000 00000000");
    for (const auto &occasion : occasions) {
        for (const QString &action : actions.split('|')) {
            const QString all(occasion[2]), first = all.section(',', 0, 0), ending(occasion[3]);
            const bool isStart = action.startsWith("init");
            const bool ends = isStart || (!ending.isEmpty() && action.startsWith(ending));
            // Nothing of what was under way is stored behind a new start.
            row(QString("%1; %2, %3").arg(occasion[0], occasion[1], action),
                QString("monitor D_W 10 x3, M_bit 3 x3, TX 5 x3 : 3;"
                        "recipe D_W 10 @1, D_W 11 x2 @2, M_bit 3 x3 @7 : 3; %1; on %2 do %3;"
                        "%4 => %5; request 0 0; %6; monitor : 0; drain => *; init 7#0#0#3#64;"
                        "plc D 10 = 3412; monitor D_W 10 : 1; serve 1 : rD10 => D_W 10;"
                        "write D_W 20 = 0100; condition D_W 30; serve 3 : wD20 rD30 rD10 => done 0")
                    .arg(occasion[0], first, action, occasion[1], ends ? first : all,
                         isStart ? "get N_W 0 x4 : 00000000 00000000; send : -" : ""));
        }
    }
}
