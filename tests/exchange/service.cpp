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
    row("writes use up the run of the condition reads", R"(monitor D_W 100 : 1
        flood condition 3; flood write 2; serve 7 : wD0 wD1 rD0 rD100 rD1 rD2 rD100 => done 0)");
    row("condition reads use up the run of the writes", R"(flood condition 3
        serve 3 : rD0 rD1 rD2 => done 0; flood write 8
        serve 9 : wD0 wD1 wD2 wD3 wD4 wD5 wD6 - wD7)");
    row("cyclic reads take turns, from the first again when monitored anew", R"(
        monitor 2#P_W 9, D_W 500, D_W 0, M_W 3 : 4; serve 6 : rM3 rD0 rD500 2#rP9 rM3 rD0
        monitor D_W 500, D_W 0 : 2; serve 1 : rD0)");
    row("a given-up cyclic read waits for its next turn", R"(monitor D_W 0, D_W 500 : 2
        send : ra 0000 00 02; fail; send : ra E803 00 02; fail; serve 1 : rD0)");
    row("what is no longer monitored is not reported", R"(monitor D_W 5, M_bit 3, TX 1 : 3
        monitor : 0; condition M_bit 0 x16, D_W 5, TX 1; data FFFF; data FFFF
        data FFFF => done 0)");
    row("a write waits until the frame in flight is done", R"(monitor D_W 100 : 1
        send : ra C800 00 02; write D_W 5 = 0100; send : ra C800 00 02; reply plc; serve 1 : wD5)");
    row("only the latest condition read is announced", R"(condition D_W 10, D_W 20
        serve 1 : rD10; serve 1 : rD20 => done 0)");
    row("a piece of the same station, start and count as the latest is the latest", R"(
        condition 2#D_W 10, D_W 11, D_W 10 x2, M_W 10, D_W 10; serve 4 : 2#rD10 rD11 rD10x2 -
        serve 1 : rM10; serve 1 : rD10 => done 0)");
    row("a failed condition read takes the rest with it, unannounced", R"(init 7#0#0#3#32
        condition D_W 0 x96; serve 1 : rD0x32; send : ra 4000 00 40; fail; serve 2 : - -)");
    row("the failure of the last condition read is announced", R"(monitor D_W 9 : 1
        condition D_W 0, D_W 9; serve 1 : rD0; fail => done -1; serve 1 : rD9; condition D_W 9
        serve 1 : rD9 => done 0)");
    row("a good reply starts the count of tries anew", R"(condition D_W 9, D_W 10
        send : ra 1200 00 02; reply none : 8; reply none : 8; send : ra 1200 00 02
        reply data 0100; send : ra 1400 00 02; fail => done -1; condition D_W 9
        send : ra 1200 00 02; fail => done -1)");
    row("513 writes at most, the last place for the newest", R"(flood write 600; serve 564 : *
        serve 2 : - -; plc D 510 x3 : FF01 0002 0000; plc D 598 x2 : 0000 5802)");
    row("a full queue: a repeated write keeps its place, one of the head takes the last", R"(
        flood write 513; write D_W 200 kind 4 = 0900; write D_W 0 kind 5 = 0800; serve 221 : *
        plc D 0 : 0100; plc D 200 : 0900; serve 343 : *; plc D 511 x2 : 0002 0000; serve 2 : - -
        item : 5 1 D_W 0 x1; plc D 0 : 0800)");
    row("513 condition reads at most, the last place for the newest", R"(flood condition 600
        serve 682 : *; serve 3 : rD599 - - => done 0)");
}
