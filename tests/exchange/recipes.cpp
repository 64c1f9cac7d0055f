// Recipe transfers, and requests for transfers that cannot be.
#include "tst_exchange.h"

void recipeRows()
{
    row("write over 5 blocks", R"(
        recipe D_W 200 x3 @5, D_W 10 x2 @0, 2#P_W 0 @9, M_W 5 @4, D_W 20 x2 @2 : 5
        buffer 0 = 0100 0200 0300 0400 0500 0600 0700 0800 FFFF 0900; request 1 0
        send : wi 0A00 00 02 0500; reply ok; send : wa 1400 00 04 0100 0200; reply ok
        send : wa 2800 00 04 0300 0400; reply ok; send : wa 9001 00 06 0600 0700 0800; reply ok
        requested : 1 0; send : wh 0000 00 02 0900; reply ok; requested : 0 0; send : -)");
    row("read over 4 blocks", R"(monitor D_W 11 : 1
        recipe D_W 200 x3 @5, D_W 10 x2 @0, M_W 5 @4, D_W 20 x2 @2 : 4; plc D 10 = 0100 0200
        plc D 20 = 0300 0400; plc D 200 = 0600 0700 0800; plc M 5 = 0500; buffer 8 = FFFF
        request 0 1; serve 1 : rM5 => RWI 4; serve 1 : rD10x2 => D_W 11, RWI 0, RWI 1
        serve 1 : rD20x2 => RWI 2, RWI 3; requested : 0 1
        serve 1 : rD200x3 => RWI 5, RWI 6, RWI 7; requested : 0 0
        buffer 0 x9 : 0100 0200 0300 0400 0500 0600 0700 0800 FFFF
        get D_W 200 x3 : 0600 0700 0800; serve 1 : rD11)");
    row("touching entries share a block; its words are written from consecutive units", R"(
        recipe D_W 12 @5, D_W 10 x2 @0 : 2; buffer 0 = 0100 0200 0300 0000 0000 0400
        request 1 0; send : wa 1400 00 06 0100 0200 0300; reply ok; request 0 1
        send : ra 1400 00 06; reply data 0A00 0B00 0C00 => RWI 0, RWI 1, RWI 5
        buffer 0 x6 : 0A00 0B00 0300 0000 0000 0C00)");
    row("entries overlap, within the limit, in the host's order when they start alike", R"(
        init 7#0#0#3#4; recipe D_W 2 x3 @10, D_W 2 x2 @20, D_W 0 x3 @0, D_W 50 @9 : 4
        plc D 0 = 0100 0200 0300 0400 0500; request 0 1; serve 1 : rD0x3 => RWI 0, RWI 1, RWI 2
        serve 1 : rD2x3 => RWI 10, RWI 11, RWI 12, RWI 20, RWI 21; serve 1 : rD50 => RWI 9
        buffer 10 x3 : 0300 0400 0500; buffer 20 x2 : 0300 0400)");
    row("an entry beyond a frame is cut, what follows keeps its place", R"(
        recipe D_W 0 x300 @10, D_W 300 x2 @500 : 2; plc D 126 x2 = 0700 0800
        plc D 299 = 0900 0A00; request 0 1; serve 4 : rD0x127 rD127x127 rD254x46 rD300x2 => *
        buffer 136 x2 : 0700 0800; buffer 309 x2 : 0900 0000; buffer 500 x2 : 0A00 0000)");
    row("stations, types, contacts and gaps stay apart", R"(
        recipe 2#D_W 1 @0, D_W 0 @1, M_W 0 @2, M_bit 0 x20 @20, M_bit 20 x5 @40, D_W 2 @3 : 6
        request 0 1; serve 6 : rM0 rD0 rD2 rM0x2 2#rD1 - => *
        recipe TX 5 @0, TX 6 @1, TX 6 x2 @2 : 3; request 0 1
        serve 3 : rTX0 rTX0x2 - => RWI 0, RWI 1, RWI 2, RWI 3)");
    row("recipe bits are joined within the limit that is in force", R"(init 7#0#0#3#1000
        recipe M_bit 0 x100 @0, M_bit 100 x100 @100, M_bit 200 x27 @200 : 3; request 0 1
        serve 2 : rM0x7 rM6x9 => *; requested : 0 0)");
    row("weights wrap: nothing is joined backwards", R"(
        recipe 10922#F_bit 0 @0, 10922#F_bit 3 @1 : 2; request 1 0
        serve 3 : 10922#nF0 10922#nF0 -)");
    row("a recipe goes before all queues, writing before reading", R"(monitor D_W 0 : 1
        recipe D_W 30 @0 : 1; flood write 1 => D_W 0; condition D_W 2; request 1 1
        serve 1 : wD30; requested : 0 1; serve 1 : rD30 => RWI 0; requested : 0 0
        serve 3 : wD0 rD2 rD0 => done 0)");
    row("only the value 1 asks", R"(recipe D_W 30 @0 : 1; request 2 255; send : -
        requested : 2 255; request 2 1; serve 2 : rD30 - => RWI 0; requested : 2 0)");
    row("entries of other drivers, unknown types, no values or no place are passed over", R"(
        recipe D_W 10 @0 owner 3, D_W 20 @1, X_W 1 @2, D_W 30 x0 @3, D_W 50 @-1, D_W 60 @1073741823 : 1
        request 1 0; serve 2 : wD20 -)");
    row("a failed block ends the transfer without a failure report, the next starts anew", R"(
        monitor D_W 10, D_W 30 : 1; recipe D_W 10 @0, D_W 30 @1, M_W 3 @2 : 3; request 1 0
        serve 2 : wM3 wD10; send : wa 3C00 00 02 0000; fail; requested : 0 0; data 0000
        request 0 1; serve 3 : rM3 rD10 rD30 => RWI 2, RWI 0, RWI 1; requested : 0 0
        request 0 1; serve 1 : rM3 => RWI 2; fail; requested : 0 0)");
    row("the failure of a write before it ends no transfer", R"(recipe D_W 10 @0, D_W 20 @1 : 2
        write D_W 5 = 0100; fail; request 1 0; serve 3 : wD10 wD20 -)");
    row("bits are written one by one or merged, no others change", R"(
        recipe M_bit 3 @0, M_bit 1604 x3 @1, TX 30 x3 @4, TX 7 @7 : 4
        buffer 0 = 0100 0100 0000 0100 0100 0000 0100 0000; request 1 0; send : oi 0000 00 0800
        reply ok; send : ri C800 00 02; reply data 2080; send : wi C800 00 02 5080; reply ok
        send : nl 0000 00 7FFF; reply ok; send : rl 0200 00 04; reply data 0180 F000
        requested : 1 0; send : wl 0200 00 04 0140 F100; reply ok; requested : 0 0; send : -)");
    row("bits of several entries in one block come from the units of each", R"(
        recipe M_bit 20 x2 @3, M_bit 22 @50 : 2; buffer 3 = 0000 0100; buffer 50 = 0100
        request 1 0; send : ri 0200 00 02; reply data 1000; send : wi 0200 00 02 6000; reply ok)");
    row("bits are read into a unit each, words keep their own addresses", R"(
        monitor M_bit 1605, M_W 6 : 2; recipe M_bit 1604 x3 @1, TX 30 x3 @4, M_W 6 @0 : 3
        plc M 6 = 1234; plc M 100 = 2080; plc TX 1 = 0040 0100
        buffer 0 = EEEE EEEE EEEE EEEE EEEE EEEE EEEE EEEE; request 0 1
        serve 1 : rM6 => M_W 6, RWI 0; serve 1 : * => M_bit 1605, RWI 1, RWI 2, RWI 3
        serve 1 : * => RWI 4, RWI 5, RWI 6; requested : 0 0
        buffer 0 x8 : 1234 0000 0100 0000 0100 0000 0100 EEEE; get M_W 100 : 2080
        get M_W 1604 : 0000)");
    row("a transfer leaves the kind of the item before it and the values of no other", R"(
        recipe D_W 10 @0 : 1; write D_W 5 kind 3 = FFFFFFFF; serve 1 : wD5x2; request 1 0
        send : wa 1400 00 02 0000; item : 3 1 D_W 10 x1)");
    row("a recipe write is not settled like a queued one", R"(monitor D_W 10 : 1
        write D_W 10 = 0100 => D_W 10; recipe D_W 10 @0 : 1; request 1 0; send : *; reply ok
        get D_W 10 : 0100; request 1 0; fail; get D_W 10 : 0100; send : wa 1400 00 02 0100
        reply ok; get D_W 10 : 0100)");
    row("blocks and position outlive a new start, the queues do not", R"(
        recipe D_W 10 @0, D_W 20 @1 : 2; request 0 1; serve 1 : rD10 => RWI 0; flood write 1
        flood condition 1; init 7#0#0#3#64; serve 2 : rD20 - => RWI 1)");
    row("a request taken back: the next transfer begins at its first block", R"(
        recipe D_W 10 @0, D_W 20 @1, D_W 30 @2 : 3; request 1 0; serve 2 : wD10 wD20; request 0 0
        send : -; request 1 0; serve 4 : wD10 wD20 wD30 -; requested : 0 0; request 0 1
        serve 1 : rD10 => RWI 0; request 0 255; send : -; request 0 1
        serve 3 : rD10 rD20 rD30 => RWI 0, RWI 1, RWI 2)");
    row("taken back in flight: the block ends, the next transfer begins at its first", R"(
        recipe D_W 10 @0, D_W 20 @1, D_W 30 @2 : 3; request 1 0; serve 1 : wD10; send : *
        request 0 0; send : wa 2800 00 02 0000; reply none : 8; send : *; reply ok; send : -
        request 1 0; serve 4 : wD10 wD20 wD30 -; requested : 0 0)");
    row("taken back and set again, or the other one set, between two looks: the position stays", R"(
        recipe D_W 10 @0, D_W 20 @1, D_W 30 @2 : 3; request 1 0; serve 1 : wD10; request 0 0
        request 1 0; send : *; request 0 0; reply ok; request 0 1; serve 1 : rD30 => RWI 2
        requested : 0 0; request 0 1; serve 1 : rD10 => RWI 0)");
    row("no entry kept: both requests are refused, the queues go on", R"(
        recipe D_W 10 @0, D_W 20 @1 : 2; recipe D_W 30 @0 owner 3 : 0; flood write 1
        request 1 1; serve 1 : wD0; requested : 0 0; recipe D_W 30 @0 : 1; request 1 0
        serve 2 : wD30 -)");
    row("refused between two blocks: the next recipe starts with its first", R"(
        recipe D_W 10 @0, D_W 20 @1 : 2; request 1 0; serve 1 : wD10; recipe X_W 0 : 0
        serve 1 : -; requested : 0 0; recipe D_W 30 @0, D_W 40 @1 : 2; request 1 0
        serve 3 : wD30 wD40 -)");
    row("no entry kept while a block is in flight: it ends no transfer of the next recipe", R"(
        recipe D_W 10 @0, D_W 20 @1 : 2; request 1 0; send : *; recipe X_W 0 : 0; reply ok
        requested : 1 0; recipe D_W 30 @0, D_W 40 @1 : 2; serve 2 : wD40 -; requested : 0 0)");
    row("registered between two blocks: the position stays", R"(
        recipe D_W 10 @0, D_W 20 @1, D_W 30 @2 : 3; request 0 1; serve 1 : rD10 => RWI 0
        recipe D_W 50 @5, D_W 60 @6, D_W 70 @7 : 3; serve 2 : rD60 rD70 => RWI 6, RWI 7
        requested : 0 0; request 0 1; serve 1 : rD50 => RWI 5)");
    row("registered while a block is in flight: its reply is none of the new recipe's values",
        R"(monitor D_W 20 : 1; recipe D_W 10 @0, D_W 20 @1, D_W 30 @2 : 3; request 0 1
        serve 1 : rD10 => RWI 0; plc D 20 = 0900; send : ra 2800 00 02
        recipe D_W 15 @5, D_W 20 @6, D_W 70 @7 : 3; reply plc => D_W 20
        buffer 1 x7 : 0000 0000 0000 0000 0000 0000 0000; serve 1 : rD70 => RWI 7
        requested : 0 0)");
    row("registered with fewer blocks than are done: the last one is repeated, and copied nowhere",
        R"(recipe D_W 10 @0, D_W 20 @1, D_W 30 @2, D_W 40 @3 : 4; request 0 1
        serve 3 : * => RWI 0, RWI 1, RWI 2
        recipe D_W 50 @5 : 1; plc D 30 = 0900; serve 2 : rD30 -; requested : 0 0
        buffer 2 x4 : 0000 0000 0000 0000; request 1 0; serve 2 : wD50 -)");
    row("written with fewer blocks than are done: the last one is repeated, then nothing is left",
        R"(recipe D_W 10 @0, D_W 20 @1, D_W 30 @2 : 3; buffer 0 = 0100 0200 0300; request 1 0
        serve 2 : wD10 wD20; recipe TX 9 x9 @4087 : 1; buffer 1 = 0700; serve 2 : wD20 -
        requested : 0 0; plc D 20 : 0200; write D_W 900 = 0100; serve 2 : wD900 -)");
    row("no recipe at all: the finished write is repeated, none is lost", R"(flood write 1
        serve 1 : wD0; write D_W 0 = 0900; write D_W 7 = 0800; request 1 0
        send : wa 0000 00 02 0100; reply plc; send : wa 0000 00 02 0100; reply plc; request 0 0
        send : wa 0000 00 02 0900; reply plc; serve 2 : wD7 -; plc D 0 : 0900)");
    row("no recipe at all: a finished condition read is repeated, none is lost or announced", R"(
        condition D_W 5; serve 1 : rD5 => done 0; condition D_W 9; request 0 1
        serve 2 : rD5 rD5; request 0 0; serve 2 : rD9 - => done 0)");
    row("no recipe at all: cyclic reads and finished merges are repeated", R"(monitor D_W 5 : 1
        serve 1 : rD5; request 0 1; serve 2 : rD5 rD5; request 0 0; write M_bit 0 = 0101
        serve 2 : rM0 wM0; write D_W 7 = 0800; request 0 1; serve 2 : rM0 wM0; request 0 0
        serve 2 : wD7 rD5)");
}
