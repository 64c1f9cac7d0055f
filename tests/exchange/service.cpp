// Reading: who is served when, and what becomes of good and bad replies.
#include "tst_exchange.h"

void Exchange::service_data()
{
    scripts();
    row("a monitored pair of words, start to end", R"(
        send : -; monitor D_W 100 x2 : 1
        send : ra C800 00 04; item : 4 1 D_W 100 x2
        reply data 3412 CDAB => D_W 100, D_W 101; get D_W 100 x2 : 3412 CDAB
        send : ra C800 00 04; reply data 3412 CDAB
        send : ra C800 00 04; reply data 3412 CEAB => D_W 101)");
    row("12 writes and a cyclic read", R"(
        monitor D_W 100 : 1; flood write 12
        serve 15 : wD0 wD1 wD2 wD3 wD4 wD5 wD6 wD7 wD8 wD9 rD100 wD10 wD11 rD100 rD100)");
    row("12 writes and nothing else: one call in between has nothing to send", R"(
        flood write 12
        serve 15 : wD0 wD1 wD2 wD3 wD4 wD5 wD6 wD7 wD8 wD9 - wD10 wD11 - -)");
    row("5 condition reads and a cyclic read", R"(
        monitor D_W 100 : 1; flood condition 5
        serve 7 : rD0 rD1 rD2 rD100 rD3 rD4 rD100 => done 0)");
    row("writes use up the run of the condition reads", R"(
        monitor D_W 100 : 1; flood condition 3; flood write 2
        serve 7 : wD0 wD1 rD0 rD100 rD1 rD2 rD100 => done 0)");
    row("cyclic reads take turns, ordered by station, type, address", R"(
        monitor 2#P_W 9, D_W 500, D_W 0, M_W 3 : 4; serve 6 : rM3 rD0 rD500 rP9 rM3 rD0
        monitor D_W 500, D_W 0 : 2; serve 1 : rD0)");
    row("a given-up cyclic read waits for its next turn", R"(
        monitor D_W 0, D_W 500 : 2; send : ra 0000 00 02; fail; send : ra E803 00 02; fail
        serve 1 : rD0)");
    row("what is no longer monitored is not reported", R"(
        monitor D_W 5, M_bit 3 : 2; monitor : 0; condition M_bit 0 x16; condition D_W 5
        send : *; reply data FFFF; send : *; reply data FFFF => done 0)");
    row("a write waits until the frame in flight is done", R"(
        monitor D_W 100 : 1; send : ra C800 00 02; write D_W 5 = 0100
        send : ra C800 00 02; reply plc; serve 1 : wD5)");
    row("condition reads of bits and contacts", R"(
        condition M_bit 1604 x21 kind 3
        send : ri C800 00 04; item : 3 1 M_W 100 x2; reply data 1000 0100 => done 0
        get M_bit 1604 x13 : 01 00 00 00 00 00 00 00 00 00 00 00 01
        condition TX 5; send : rl 0000 00 20; item : 0 1 TX 5 x16; reply plc => done 0)");
    row("only the latest condition read is announced", R"(
        condition D_W 10; condition D_W 20; serve 1 : rD10; serve 1 : rD20 => done 0)");
    row("a failed condition read takes the rest with it, unannounced", R"(
        init 7#0#0#3#32; condition D_W 0 x96
        serve 1 : rD0x32; send : ra 4000 00 40; fail; serve 2 : - -)");
    row("the failure of the last condition read is announced", R"(
        monitor D_W 9 : 1; condition D_W 0; condition D_W 9; serve 1 : rD0
        send : *; fail => done -1; serve 1 : rD9)");
    row("a good reply starts the count of tries anew", R"(
        condition D_W 9; condition D_W 10; send : ra 1200 00 02; reply none : 8; reply none : 8
        send : ra 1200 00 02; reply data 0100; send : ra 1400 00 02; fail => done -1)");
    row("what was asked is told whatever the outcome", R"(
        monitor D_W 100 x10 : 1; send : *; reply none : 8; error : 1#D_W100(10)(0)
        write 2#M_bit 325 = 010001; reply plc; error : 1#D_W100(10)(45)
        send : *; reply raw 06 77 3737 04; error : 2#M_bit20.5(3)(5))");
}

void Exchange::judging_data()
{
    scripts();
    const QString script("monitor D_W 100 x2 : 1; send : *; reply %1 => *; get D_W 100 x2 : %2");
    const auto pair = [&script](const char *name, const char *reply, const char *values) {
        QTest::newRow(name) << script.arg(QLatin1String(reply), QLatin1String(values));
    };
    pair("nothing", "none : 8", "00000000");
    pair("not acknowledged", "raw 15 72 3132333435363738 3136 04 : 8", "00000000");
    pair("good", "raw 06 72 3132333435363738 3136 04", "12345678");
    pair("checksum wrong", "raw 06 72 3132333435363738 3137 04 : 8", "00000000");
    pair("the letter in lower case", "raw 06 7F 3132333435363743 3265 04 : 8", "00000000");
    pair("cut off", "raw 06 72 31323334 : 8", "00000000");
    pair("four bytes", "raw 06 30 30 04", "00000000");
    pair("an acknowledgement: its checksum is read as data", "ok", "77000000");
    pair("a word too few: the checksum is read as data", "data 1234", "12343C00");
    row("a write takes a reply with data", "write D_W 100 = 1122; send : *; reply data 0000");
    row("a write takes the shortest reply", "write D_W 100 = 1122; send : *; reply raw 06303004");
}
