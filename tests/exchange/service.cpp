// Who is served when, and what becomes of items that are given up.
#include "tst_exchange.h"

void serviceRows()
{
    row("12 writes and a cyclic read", R"(monitor D_W 100 : 1; flood write 12
        serve 15 : wD0 wD1 wD2 wD3 wD4 wD5 wD6 wD7 wD8 wD9 rD100 wD10 wD11 rD100 rD100)");
    row("12 writes and nothing else: one call in between has nothing to send", R"(flood write 12
        serve 15 : wD0 wD1 wD2 wD3 wD4 wD5 wD6 wD7 wD8 wD9 - wD10 wD11 - -)");
    row("a run of writes begins anew with the driver", R"(flood write 9; serve 9 : *
        init 7#0#0#3#64; monitor D_W 100 : 1; flood write 3; serve 4 : wD0 wD1 wD2 rD100)");
    row("5 condition reads and a cyclic read", R"(monitor D_W 100 : 1; flood condition 5
        serve 7 : rD0 rD1 rD2 rD100 rD3 rD4 rD100 => done 0)");
    row("a piece of the same station, start and count as the latest is the latest", R"(
        condition 2#D_W 10, D_W 11, D_W 10 x2, M_W 10, D_W 10; serve 4 : 2#rD10 rD11 rD10x2 -
        serve 1 : rM10; serve 1 : rD10 => done 0)");
    row("asked for again while in flight, a condition read is told early, and twice", R"(
        condition D_W 10; send : *; condition D_W 10; reply plc => done 0
        serve 2 : rD10 - => done 0)");
    row("asked for again while waiting, it is told before what waits behind it", R"(
        condition D_W 10, D_W 20, D_W 30, D_W 20; serve 2 : rD10 rD20 => done 0; serve 2 : rD30 -)");
    row("a piece that is given up takes the rest of its range with it, untold", R"(
        condition D_W 0 x200; fail; serve 2 : - -)");
    row("a transfer that cannot be: nothing is offered while it is asked for, nothing is lost", R"(
        flood write 1; request 1 0; serve 3 : - - -; request 0 0; serve 2 : wD0 -
        recipe D_W 10 @0, D_W 20 @1 : 2; request 1 0; serve 1 : wD10; recipe D_W 30 : 1
        init 7#0#0#3#64; flood write 1; serve 3 : - - -; request 0 0; serve 2 : wD0 -)");
    row("513 writes at most, the last place for the newest", R"(flood write 600; serve 564 : *
        serve 2 : - -; plc D 510 x3 : FF01 0002 0000; plc D 598 x2 : 0000 5802)");
    row("a full queue: a repeated write keeps its place, one of the head takes the last", R"(
        flood write 513; write D_W 200 kind 4 = 0900; write D_W 0 kind 5 = 0800; serve 221 : *
        plc D 0 : 0100; plc D 200 : 0900; serve 343 : *; plc D 511 x2 : 0002 0000; serve 2 : - -
        item : 5 1 D_W 0 x1; plc D 0 : 0800)");
    row("513 condition reads at most, the last place for the newest", R"(flood condition 600
        serve 682 : *; serve 3 : rD599 - - => done 0)");
}
