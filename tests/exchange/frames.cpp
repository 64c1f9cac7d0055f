// Requests byte for byte, what counts as a good reply, and how its characters become values. The
// bench checks the lengths and the checksum of every frame.
#include "tst_exchange.h"

void frameRows()
{
    row("a monitored pair of words, start to end", R"(send : -; monitor D_W 100 x2 : 1
        send : ra C800 00 04; item : 4 1 D_W 100 x2; reply data 3412 CDAB => D_W 100, D_W 101
        get D_W 100 x2 : 3412 CDAB; send : ra C800 00 04; reply data 3412 CDAB
        send : ra C800 00 04; reply data 3412 CEAB => D_W 101)");
    row("condition reads of bits and contacts", R"(condition M_bit 1604 x21 kind 3
        send : ri C800 00 04; item : 3 1 M_W 100 x2; reply data 1000 0100 => done 0
        get M_bit 1604 x13 : 01 00 00 00 00 00 00 00 00 00 00 00 01; condition TX 5 kind 8
        send : rl 0000 00 20; item : 8 1 TX 5 x16; reply plc => done 0)");
    row("words",
        "write D_W 7 kind 5 = 1234ABCD; send : wa 0E00 00 04 1234ABCD; item : 5 1 D_W 7 x2");
    row("the first contact, cleared", "write CX 0 = 00; send : nm 0000 00 FEFF; reply ok");
    row("a bit of the high byte, set by any value", "write F_bit 8 = FF; send : on 0000 00 0001");
    row("the last 4 bits of a word", R"(write P_bit 12 = 01000001; send : rh 0000 00 02
        reply data FFFF; send : wh 0000 00 02 FF9F)");
    row("17 contacts from the first of a word", R"(
        write CX 16 = 0101010101010101 0101010101010101 00 => *; send : rm 0200 00 04
        reply data 0000FFFF; send : wm 0200 00 04 FFFF FEFF)");
    row("several bits: read, merge, write", R"(monitor M_W 5 x2 : 1
        write M_bit 94 kind 6 = 01 00 01 => M_W 5, M_W 6; send : ri 0A00 00 04
        item : 6 1 M_bit 94 x3; reply data A5A55A5A; send : wi 0A00 00 04 A5655B5A
        item : 6 1 M_bit 94 x3; reply ok => M_W 5, M_W 6; get M_bit 94 x3 : 01 00 01)");
    row("several bits: any value but 0 sets, lower case is read, what is missing is 0", R"(
        write M_bit 94 = 02 00 80; send : ri 0A00 00 04; reply data ff
        send : wi 0A00 00 04 FF7E0100)");
    row("characters that are no hex digits", R"(monitor D_W 0 x4 : 1; send : *
        reply hex 3A3B3F3E 2F314032 47485A7E 80FF90A0 => D_W 0, D_W 1, D_W 2, D_W 3
        get D_W 0 x4 : ABFE 0102 0137 9899)");
    row("a reply too short: its checksum is read as data, what is missing as 0", R"(
        monitor D_W 0 x4 : 1; data 341AB => D_W 0, D_W 1; get D_W 0 x4 : 341A B8D0 0000 0000)");
    row("all types in the order of the read planning", R"(
        monitor CX 9, TX 9, Z_W 9, N_W 9, C_W 9, T_W 9, S_W 9, D_W 9, F_W 9, K_W 9, L_W 9 : 11
        serve 11 : rL9 rK9 rF9 rD9 rS9 rT9 rC9 rN9 rZ9 rTX0 rCX0)");

    const QString script("monitor D_W 100 x2 : 1; send : *; reply %1 => *; get D_W 100 x2 : %2");
    const auto pair = [&script](const char *name, const char *reply, const char *values) {
        row(name, script.arg(QLatin1String(reply), QLatin1String(values)));
    };
    pair("nothing", "none : 8", "00000000");
    pair("not acknowledged", "raw 15 72 3132333435363738 3136 04 : 8", "00000000");
    pair("not ended", "raw 06 72 3132333435363738 3136 03 : 8", "00000000");
    pair("good", "raw 06 72 3132333435363738 3136 04", "12345678");
    pair("low checksum digit wrong", "raw 06 72 3132333435363738 3137 04 : 8", "00000000");
    pair("high checksum digit wrong", "raw 06 72 3132333435363738 3236 04 : 8", "00000000");
    pair("the letter in lower case", "raw 06 7F 3132333435363743 3265 04 : 8", "00000000");
    pair("three bytes", "raw 06 06 04 : 8", "00000000");
    pair("four bytes", "raw 06 30 30 04", "00000000");
    pair("an acknowledgement: its checksum is read as data", "ok", "77000000");
    row("a write takes a reply with data", "write D_W 100 = 1122; data 0000");
    row("a write takes the shortest reply", "write D_W 100 = 1122; send : *; reply raw 06303004");
    row("what was asked is told whatever the outcome", R"(monitor D_W 100 x10 : 1; send : *
        reply none : 8; error : 1#D_W100(10)(0); write 2#M_bit 325 = 010001; reply plc
        error : 1#D_W100(10)(45); send : *; reply raw 06 77 3737 04; error : 2#M_bit20.5(3)(5)
        send : *; reply ok; write -3#TX 2047 = 01 => 7 -3 TX 2047; send : *; reply none : 8
        error : -3#TX2047(1)(0))");
}
