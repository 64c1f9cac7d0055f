// Recipe transfers, and requests for transfers that cannot be.
#include "tst_exchange.h"

void Exchange::recipes_data()
{
    scripts();
    row("write over 5 blocks", R"(
        recipe D_W 200 x3 @5, D_W 10 x2 @0, 2#P_W 0 @9, M_W 5 @4, D_W 20 x2 @2 : 5
        buffer 0 = 0100 0200 0300 0400 0500 0600 0700 0800 FFFF 0900; request write
        send : wi 0A00 00 02 0500; reply ok
        send : wa 1400 00 04 0100 0200; reply ok
        send : wa 2800 00 04 0300 0400; reply ok
        send : wa 9001 00 06 0600 0700 0800; reply ok; requested : write
        send : wh 0000 00 02 0900; reply ok; requested : none; send : -)");
    row("read over 4 blocks", R"(
        monitor D_W 11 : 1; recipe D_W 200 x3 @5, D_W 10 x2 @0, M_W 5 @4, D_W 20 x2 @2 : 4
        plc D 10 = 0100 0200; plc D 20 = 0300 0400; plc D 200 = 0600 0700 0800; plc M 5 = 0500
        buffer 8 = FFFF; request read
        serve 1 : rM5 => RWI 4
        serve 1 : rD10x2 => D_W 11, RWI 0, RWI 1
        serve 1 : rD20x2 => RWI 2, RWI 3; requested : read
        serve 1 : rD200x3 => RWI 5, RWI 6, RWI 7; requested : none
        buffer 0 x9 : 0100 0200 0300 0400 0500 0600 0700 0800 FFFF
        get D_W 200 x3 : 0600 0700 0800; serve 1 : rD11)");
    row("touching entries share a block; its words are written from consecutive units", R"(
        recipe D_W 12 @5, D_W 10 x2 @0 : 2
        buffer 0 = 0100 0200 0300 0000 0000 0400; request write
        send : wa 1400 00 06 0100 0200 0300; reply ok; request read
        send : ra 1400 00 06; reply data 0A00 0B00 0C00 => RWI 0, RWI 1, RWI 5
        buffer 0 x6 : 0A00 0B00 0300 0000 0000 0C00)");
    row("a recipe goes before all queues, writing before reading", R"(
        monitor D_W 0 : 1; recipe D_W 30 @0 : 1
        flood write 1 => D_W 0; condition D_W 2; request write read
        serve 1 : wD30; requested : read; serve 1 : rD30 => RWI 0; requested : none
        serve 3 : wD0 rD2 rD0 => done 0)");
    row("entries of other drivers are passed over", R"(
        recipe D_W 10 @0 owner 3, D_W 20 @1 : 1; request write; serve 2 : wD20 -)");
    row("a failed block ends the transfer without a failure report", R"(
        monitor D_W 10 : 1; recipe D_W 10 @0, D_W 30 @1 : 2; request write
        send : wa 1400 00 02 0000; fail; requested : none; serve 1 : rD10
        request read; serve 2 : rD10 rD30 => RWI 0, RWI 1; requested : none)");
    row("bits are written one by one or merged, no others change", R"(
        recipe M_bit 3 @0, M_bit 1604 x3 @1, TX 30 x3 @4, TX 7 @7 : 4
        buffer 0 = 0100 0100 0000 0100 0100 0000 0100 0000; request write
        send : oi 0000 00 0800; reply ok
        send : ri C800 00 02; reply data 2080; send : wi C800 00 02 5080; reply ok
        send : nl 0000 00 7FFF; reply ok
        send : rl 0200 00 04; reply data 0180 F000; requested : write
        send : wl 0200 00 04 0140 F100; reply ok; requested : none; send : -)");
    row("bits are read into a unit each, words keep their own addresses", R"(
        monitor M_bit 1605, M_W 6 : 2; recipe M_bit 1604 x3 @1, TX 30 x3 @4, M_W 6 @0 : 3
        plc M 6 = 1234; plc M 100 = 2080; plc TX 1 = 0040 0100
        buffer 0 = EEEE EEEE EEEE EEEE EEEE EEEE EEEE EEEE; request read
        serve 1 : rM6 => M_W 6, RWI 0
        serve 1 : * => M_bit 1605, RWI 1, RWI 2, RWI 3
        serve 1 : * => RWI 4, RWI 5, RWI 6; requested : none
        buffer 0 x8 : 1234 0000 0100 0000 0100 0000 0100 EEEE
        get M_W 100 : 2080; get M_W 1604 : 0000)");
    row("blocks outlive a new start, the queues do not", R"(
        recipe D_W 10 @0, D_W 20 @1 : 2; request read; serve 1 : rD10 => RWI 0
        flood write 1; flood condition 1; init 7#0#0#3#64; serve 2 : rD20 - => RWI 1)");
    row("no entry kept: transfers are refused, the queues go on", R"(
        recipe D_W 10 @0, D_W 20 @1 : 2; recipe D_W 30 @0 owner 3 : 0; flood write 1
        request write; serve 1 : wD0; requested : none
        request read; serve 1 : -; requested : none
        recipe D_W 30 @0 : 1; request write; serve 2 : wD30 -)");
    row("no recipe at all: the finished write is repeated, none is lost", R"(
        flood write 1; serve 1 : wD0; write D_W 0 = 0900; write D_W 7 = 0800; request write
        send : wa 0000 00 02 0100; reply plc; send : wa 0000 00 02 0100; reply plc
        request none; send : wa 0000 00 02 0900; reply plc; serve 2 : wD7 -; plc D 0 : 0900)");
    row("no recipe at all: a finished condition read is repeated, none is lost or announced", R"(
        condition D_W 5; serve 1 : rD5 => done 0; condition D_W 9; request read
        serve 2 : rD5 rD5; request none; serve 2 : rD9 - => done 0)");
    row("no recipe at all: cyclic reads and finished merges are repeated", R"(
        monitor D_W 5 : 1; serve 1 : rD5; request read; serve 2 : rD5 rD5; request none
        write M_bit 0 = 0101; serve 2 : rM0 wM0; write D_W 7 = 0800; request read
        serve 2 : rM0 wM0; request none; serve 2 : wD7 rD5)");
}

void Exchange::recipeChangedUnderWay_data()
{
    scripts();
    for (const char *request : {"write", "read"}) {
        for (const char *moment : {"", "send : *"}) {
            for (const char *recipe :
                 {"D_W 50", "D_W 50 @4095", "D_W 10 x60 @4000, D_W 90 @1",
                  "D_W 10, D_W 20, D_W 30, D_W 40, D_W 50", "M_bit 5 x40", "TX 9 x9 @4087", "XX 5"})
                QTest::addRow("%s, %s then %s", request, moment, recipe)
                    << QString(
                           "recipe D_W 10 @0, D_W 20 x9 @1, D_W 40 @10, D_W 60 @11 : 4;"
                           "request %1; serve 2 : * => *; %2; recipe %3 : *;"
                           "serve 20 : * => *; requested : none;"
                           "write D_W 900 = 0100; serve 2 : wD900 -; plc D 900 : 0100")
                           .arg(QLatin1String(request), QLatin1String(moment),
                                QLatin1String(recipe));
        }
    }
}
