// Writing: the queue, what shows while a write is under way, and what happens when it ends.
#include "tst_exchange.h"

void writeRows()
{
    row("several bits given up while still reading", R"(monitor M_bit 95 : 1
        write M_bit 94 = 01 01 => M_bit 95; send : ri 0A00 00 02; fail => M_bit 95
        get M_bit 94 x2 : 00 00; serve 1 : rM5)");
    row("several bits: a new count of tries for the second frame", R"(write M_bit 94 = 01 01
        send : ri 0A00 00 02; reply none : 8; reply none : 8; reply data 0000
        send : wi 0A00 00 02 00C0; reply none : 8; reply none : 8; send : wi 0A00 00 02 00C0
        reply ok; send : -)");
    row("several bits: what is read to merge is not stored", R"(monitor M_W 5 : 1
        write M_bit 80 = 01 01 => M_W 5, M_W 5; data 3C3C; get M_W 5 : 0300
        send : wi 0A00 00 02 3F3C; reply ok => M_W 5; get M_W 5 : 0300)");
    row("words acknowledged are the values read, unreported", R"(monitor D_W 10 x2 : 1
        write D_W 10 = 7856 0000 => D_W 10; send : *; reply ok; get D_W 10 : 7856
        data 7856 0000; write D_W 10 = 0100 => D_W 10; fail => D_W 10; get D_W 10 : 7856)");
    row("a failed write of words is withdrawn and reported, changed or not", R"(
        monitor D_W 10, D_W 11 : 1; data 3412 0000 => D_W 10; write D_W 10 = 7856 0000 => D_W 10
        get D_W 10 : 7856; send : wa 1400 00 04 7856 0000; fail => D_W 10, D_W 11
        error : 1#D_W10(2)(0); get D_W 10 : 3412)");
    row("of the bits of a failed word only those that differ are reported", R"(
        monitor M_bit 144 x16 : 1; write M_W 9 = 0500 => M_bit 144, M_bit 146
        fail => M_bit 144, M_bit 146)");
    row("contacts, acknowledged and failed: reported though nobody monitors them", R"(
        write TX 5 = 01 => TX 5; send : *; reply ok; get TX 5 : 01; write TX 5 = 00 => TX 5
        fail => TX 5; get TX 5 : 01)");
    row("a bit acknowledged: the others stay as read, all monitored are reported", R"(
        monitor M_bit 152 x3, M_W 9 : 1; data F000 => M_W 9
        write M_bit 153 = 01 => M_bit 153, M_W 9; send : *
        reply ok => M_bit 152, M_bit 153, M_bit 154, M_W 9; get M_W 9 : F002
        write M_W 9 = 0000 => M_bit 153, M_W 9; fail => *; get M_W 9 : F002)");
    row("a bit acknowledged does not take its neighbours' shown values along", R"(
        monitor M_W 9 : 1; write M_bit 144 = 01 => M_W 9; write M_bit 151 = 01 => M_W 9
        serve 1 : oM9; get M_W 9 : 8100; fail => M_W 9; get M_W 9 : 0100)");
    row("a write is hidden by a new value from the controller until it is acknowledged", R"(
        monitor D_W 10 : 1; send : ra 1400 00 02; write D_W 10 = 7856 => D_W 10
        reply data 3412 => D_W 10; get D_W 10 : 3412; send : wa 1400 00 02 7856; reply ok
        get D_W 10 : 7856)");
    row("an unchanged value from the controller leaves the write showing", R"(
        monitor D_W 10, TX 5 : 2; send : *; write D_W 10 = 7856 => D_W 10
        write TX 5 = 01 => TX 5; reply data 0000; get D_W 10 : 7856; get TX 5 : 01)");
    row("two writes of one bit under way", R"(monitor M_bit 1609 : 1
        write M_bit 1609 = 01 => M_bit 1609; send : oi C800 00 0002
        write M_bit 1609 = 00 => M_bit 1609; reply ok; get M_bit 1609 : 00
        send : ni C800 00 FFFD; reply ok => M_bit 1609; get M_bit 1609 : 00)");
    row("three writes of one bit are two that end", R"(monitor M_bit 1609 : 1
        write M_bit 1609 = 01 => M_bit 1609; write M_bit 1609 = 00 => *
        write M_bit 1609 = 01 => *; serve 1 : oM100; serve 1 : oM100 => M_bit 1609; send : *
        get M_bit 1609 : 01)");
    row("a second write of a bit is told from one that starts elsewhere", R"(
        monitor M_bit 1609 : 1; write M_bit 1609 = 01 01 => M_bit 1609; write M_bit 1608 = 01 01
        serve 2 : rM100 wM100; serve 2 : rM100 wM100 => M_bit 1609, M_bit 1609)");
    row("from one of another length", R"(monitor M_bit 1608 : 1
        write M_bit 1608 = 01 01 => M_bit 1608; write M_bit 1608 = 01
        serve 2 : rM100 wM100 => M_bit 1608; serve 1 : oM100 => M_bit 1608)");
    row("from one of another station or type", R"(monitor M_bit 1609 : 1
        write M_bit 1609 = 01 => M_bit 1609; write 2#M_bit 1609 = 01; write P_bit 1609 = 01
        write M_bit 1609 = 01; serve 3 : oM100 2#oM100 oP100; serve 1 : oM100 => M_bit 1609)");
    row("bits of one word: nothing is reported until the last is settled", R"(
        monitor M_bit 1600 x2 : 1; write M_bit 1600 = 01 => M_bit 1600
        write M_bit 1601 = 01 => M_bit 1601; serve 1 : oM100; get M_bit 1600 x2 : 01 01
        serve 1 : oM100 => M_bit 1600, M_bit 1601; plc M 100 : 0300)");
    row("a changed word stays hidden while bits of it are being written", R"(monitor M_W 100 : 1
        send : ri C800 00 02; write M_bit 1600 = 01 => M_W 100; reply data 0080 => M_W 100
        get M_W 100 : 0100; send : oi C800 00 0100; reply ok => M_W 100; get M_W 100 : 0180)");
    row("marks reset under way: the bit is settled at once", R"(monitor M_bit 1600 : 1
        write M_bit 1600 = 01 => M_bit 1600; write M_bit 1601 = 01; monitor M_bit 1600 : 1
        serve 1 : oM100 => M_bit 1600; get M_bit 1600 x2 : 01 00; serve 1 : oM100 => M_bit 1600
        get M_bit 1600 x2 : 01 01; write M_bit 1600 = 00 => M_bit 1600; send : ni C800 00 FEFF
        monitor M_bit 1600 : 1; write M_bit 1600 = 00; reply ok => M_bit 1600)");
    row("a newer value takes the place of one that waits", R"(write D_W 1 = 0100
        write D_W 5 kind 1 = 0200; write D_W 6 = 0300; write D_W 5 kind 2 = 0400; serve 1 : wD1
        send : wa 0A00 00 02 0400; item : 2 1 D_W 5 x1; reply ok; serve 2 : wD6 -)");
    row("a newer value queues behind the one in service", R"(write D_W 5 = 0200
        write D_W 5 = 0400; send : wa 0A00 00 02 0200; reply ok; send : wa 0A00 00 02 0400
        reply ok; send : -)");
    row("another type, start, length or station is another write", R"(write D_W 1 = 0100
        write D_W 5 = 0200; write 2#D_W 5 = 0300; write D_W 5 = 0400 0500; write M_W 5 = 0600
        write D_W 6 = 0700; serve 7 : wD1 wD5 2#wD5 wD5x2 wM5 wD6 -)");
    for (const char *const mode : {"1", "2", "-1"})
        row(QString("shown but not sent, mode %1").arg(mode), QString(R"(
        init 7#%1#0#3#64; monitor D_W 5 : 1; write D_W 5 = 0100 => D_W 5; serve 1 : rD5
        get D_W 5 : 0100; plc D 5 = 0200; serve 1 : rD5 => D_W 5; get D_W 5 : 0200
        monitor M_bit 3 : 1; write M_bit 3 = 01 => M_bit 3; get M_bit 3 : 01; plc M 0 = 0100
        serve 1 : rM0; get M_bit 3 : 00)")
                                                                  .arg(mode));
}
