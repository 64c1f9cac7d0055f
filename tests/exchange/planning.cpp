// Which requests serve what the panel asks for: monitored keys as read blocks, condition reads and
// writes in pieces.
#include "tst_exchange.h"

namespace {

/** One row: with this block limit, what is asked for takes these requests. */
void plan(const char *name, const char *limit, const char *asked, const char *requests)
{
    const QString wanted(requests);
    const int count = wanted.isEmpty() ? 0 : int(wanted.count(' ')) + 1;
    const bool monitors = QString(asked).startsWith("monitor");
    // What was monitored before is replaced as a whole.
    row(name, QString("init 7#0#0#3#%1; monitor N_W 0, N_W 500, CX 7 : *; monitor : 0; %2 %3 => *;"
                      "serve %4 : %5 => *; %6")
                  .arg(limit, asked, monitors ? QString(": %1").arg(count) : QString(),
                       QString::number(count), wanted, monitors ? "" : "send : -"));
}

}  // namespace

void planningRows()
{
    plan("a bit key and a word key of one device share a block", "64",
         "monitor M_bit 1604 x21, M_W 101", "rM100x2");
    plan("a whole word of bits, and one bit more", "1", "monitor M_bit 16 x16, P_bit 16 x17",
         "rP1x2 rM1");
    plan("keys that touch or overlap", "64", "monitor D_W 0 x2, D_W 2 x3, D_W 3 x4", "rD0x7");
    plan("up to the limit", "10", "monitor D_W 0 x2, D_W 8 x2", "rD0x10");
    plan("not beyond it", "10", "monitor D_W 0 x2, D_W 9 x2", "rD0x2 rD9x2");
    plan("neighbours join before gaps are bridged", "10", "monitor D_W 0 x2, D_W 9, D_W 10 x3",
         "rD0x2 rD9x4");
    plan("any order in, address order out", "2", "monitor D_W 5, M_bit 0, P_W 9, D_W 1",
         "rP9 rM0 rD1 rD5");
    plan("stations and types stay apart", "64", "monitor 2#D_W 1, D_W 0, 0#D_W 1, L_W 0",
         "0#rD1 rL0 rD0 2#rD1");
    plan("stations far apart", "64", "monitor 3000#D_W 0, D_W 0, 1500#D_W 0",
         "rD0 1500#rD0 3000#rD0");
    plan("stations so far apart that their weights wrap, types lying 65535 apart", "64",
         "monitor 0#M_W 0, 3641#P_W 0", "3641#rP0 0#rM0");
    plan("a key of which no piece can be read", "64", "monitor D_W -127 x127, D_W 5", "rD5");
    plan("contacts side by side stay apart", "64", "monitor CX 5, CX 6", "rCX0 rCX0");
    plan("a key beyond the limit is one block", "64", "monitor D_W 0 x100", "rD0x100");
    plan("a key beyond a frame is consecutive items", "64", "monitor D_W 0 x300",
         "rD0x127 rD127x127 rD254x46");
    plan("a limit beyond a frame is a frame", "1000", "monitor D_W 0, D_W 900", "rD0 rD900");
    plan("no limit to speak of", "2147483647", "monitor D_W 0, D_W 126, D_W 130", "rD0x127 rD130");
    plan("joined up to a frame, not cut at one", "200", "monitor D_W 0 x100, D_W 100 x100",
         "rD0x100 rD100x100");
    plan("a limit below 1 is 1", "0", "monitor D_W 5, D_W 5, D_W 6", "rD5 rD6");
    plan("below 0 too, so bits are written by 8", "-5", "write M_bit 0 x10", "rM0 wM0 rM0 wM0");
    plan("at most 8 bits a word of the limit", "1000", "write M_bit 0 x1020",
         "rM0x64 wM0x64 rM63 wM63");
    plan("no such address", "64", "monitor X_W 0, d_w 0, D_bit 0, D_W 0 x0, D_W 1 x-1, D_W 7",
         "rD7");
    plan("condition reads in pieces of the limit", "32", "condition D_W 0 x100",
         "rD0x32 rD32x32 rD64x32 - rD96x4");
    plan("7 contacts a frame", "64", "condition TX 0 x20", "rTX0x112 rTX0x112 rTX0x96");
    plan("more bits than a frame has words", "64", "condition M_bit 0 x500", "rM0x32");
    plan("bits as words, in pieces of limit * 8", "1", "condition M_bit 1604 x21",
         "rM100 rM100x2 rM101");
    plan("bits with the mark of words, in pieces of the limit", "64",
         "condition M_bit 0 x130 mark 0", "rM0x4 rM4x4 rM8");
    plan("no such condition read", "64",
         "condition X_W 0, X_bit 0, D_bit 0, D_W 0 x0, TX 0 x-1, M_bit 3 x0", "");
    plan("writes in pieces of the limit", "64", "write D_W 0 x150", "wD0x64 wD64x64 wD128x22");
    plan("bit writes in pieces of limit * 8", "2", "write M_bit 1600 x20",
         "rM100 wM100 rM101 wM101");
    plan("no such write", "64",
         "write X_W 0 => *; write X_bit 0; write d_w 0 => *;"
         "write D_W 0 x0; write TX 0 x-1; write M_bit 3 x0",
         "");
    const QString others = QString(", TX 5").repeated(39);
    row("keys of equal weight keep their order: the first one opens the block",
        "init 7#0#0#3#2; monitor TX 5 x3" + others + " : 1; monitor TX 5" + others +
            ", TX 5 x3 : 2");
}
