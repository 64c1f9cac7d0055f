// Writing: the queue, what shows while a write is under way, and what happens when it ends.
#include "tst_exchange.h"

void writeRows()
{
    row("several bits: a new count of tries for the second frame", R"(write M_bit 94 = 01 01
        send : ri 0A00 00 02; reply none : 8; reply none : 8; reply data 0000
        send : wi 0A00 00 02 00C0; reply none : 8; reply none : 8; send : wi 0A00 00 02 00C0
        reply ok; send : -)");
    row("several bits: what is read to merge is not stored", R"(monitor M_W 5 : 1
        write M_bit 80 = 01 01 => M_W 5, M_W 5; data 3C3C; get M_W 5 : 0300
        send : wi 0A00 00 02 3F3C; reply ok => M_W 5; get M_W 5 : 0300)");
    row("a failed write of words is withdrawn and reported, changed or not", R"(
        monitor D_W 10, D_W 11 : 1; data 3412 0000 => D_W 10; write D_W 10 = 7856 0000 => D_W 10
        get D_W 10 : 7856; send : wa 1400 00 04 7856 0000; fail => D_W 10, D_W 11
        error : 1#D_W10(2)(0); get D_W 10 : 3412)");
    row("two writes of one bit under way", R"(monitor M_bit 1609 : 1
        write M_bit 1609 = 01 => M_bit 1609; send : oi C800 00 0002
        write M_bit 1609 = 00 => M_bit 1609; reply ok; get M_bit 1609 : 00
        send : ni C800 00 FFFD; reply ok => M_bit 1609; get M_bit 1609 : 00)");
    row("a second write of a bit is told from one of another station or type",
        R"(monitor M_bit 1609 : 1
        write M_bit 1609 = 01 => M_bit 1609; write 2#M_bit 1609 = 01; write P_bit 1609 = 01
        write M_bit 1609 = 01; serve 3 : oM100 2#oM100 oP100; serve 1 : oM100 => M_bit 1609)");
    row("monitored anew between two writes of one bit: the first end settles both", R"(
        monitor M_bit 3 : 1; write M_bit 3 = 01 => M_bit 3; send : *; monitor M_bit 3, M_bit 0 : 1
        write M_bit 3 = 00 => M_bit 3; reply ok => M_bit 0, M_bit 3)");
    row("a newer value takes the place of one that waits", R"(write D_W 1 = 0100
        write D_W 5 kind 1 = 0200; write D_W 6 = 0300; write D_W 5 kind 2 = 0400; serve 1 : wD1
        send : wa 0A00 00 02 0400; item : 2 1 D_W 5 x1; reply ok; serve 2 : wD6 -)");
    row("lost in a full queue: a word shows until it changes, a bit until it does with none queued",
        R"(
        monitor M_bit 3, M_bit 7, D_W 900 : 2; flood write 513; write D_W 900 = 0900 => D_W 900
        write M_bit 3 = 01 => M_bit 3; write D_W 901 = 0100; plc M 0 = 8000; plc D 900 = 0500
        serve 22 : * => M_bit 7, D_W 900; get D_W 900 : 0500; get M_bit 3 x5 : 01 00 00 00 00
        serve 560 : *; get M_bit 3 x5 : 01 00 00 00 00; plc M 0 = 0000; serve 2 : * => M_bit 7
        get M_bit 3 : 00)");
    for (const char *const mode : {"1", "2", "-1"})
        row(QString("shown but not sent, mode %1").arg(mode), QString(R"(
        init 7#%1#0#3#64; monitor D_W 5 : 1; write D_W 5 = 0100 => D_W 5; serve 1 : rD5
        get D_W 5 : 0100; plc D 5 = 0200; serve 1 : rD5 => D_W 5; get D_W 5 : 0200
        monitor M_bit 3 : 1; write M_bit 3 = 01 => M_bit 3; get M_bit 3 : 01; plc M 0 = 0100
        serve 1 : rM0; get M_bit 3 : 00)")
                                                                  .arg(mode));
}
