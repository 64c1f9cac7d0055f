// The cache: what the panel reads back, which changes it is told, and in which order.
#include "tst_exchange.h"

void valueRows()
{
    row("low byte first, words and bits share, stations do not", R"(condition M_W 10 x2
        data 3412CDAB => done 0; get M_W 10 x2 : 3412CDAB; get M_bit 162 x4 : 01 00 01 01
        get M_bit 175 x2 : 00 01; get 2#M_W 10 : 0000; get P_W 10 : 0000; get TX 162 : 00)");
    row("read without a report: a first 0, the same as last time, changed while it was read along",
        R"(
        monitor D_W 5 : 1; serve 1 : rD5; plc D 5 = 0700; serve 1 : rD5 => D_W 5
        monitor D_W 500 : 1; serve 1 : rD500; monitor D_W 5 : 1; serve 1 : rD5
        monitor D_W 4, D_W 6 : 1; plc D 5 = 0800; serve 1 : rD4x3; monitor D_W 5 : 1
        get D_W 5 : 0800; serve 1 : rD5)");
    row("unknown names are bit types, unless they have _bit", R"(write Q 5 = 0107 => Q 5, Q 6
        get Q 5 x2 : 0107; write X_W 5 = 0100 => X_W 5; get Q 6 : 07; write Q_bit 5 = 01
        write q 5 = 02 => q 5; get Q 5 : 01; monitor Q 5 x2, Q_bit 5 : 0; write Q 5 = 00 => Q 5
        send : -)");
    QString write("init 7#1#0#3#64"), read;
    int value = 1000;
    for (const int station : {0, 1, -1, 65536, 65537, 0x7FFFFFFF}) {
        for (const char *const type : {"D_W", "M_W", "TX", "CX", "X"}) {
            for (const int unit : {0, 1, 63, 64, 65, 4095, 65536, 1 << 22, 1 << 26, 1 << 30,
                                   0x7FFFFFFF, -1, -64, -65}) {
                const Range range(type);
                const QString place = QString("%1#%2 %3").arg(station).arg(type).arg(unit);
                const QString values = QString::number(++value).right(2 * widthOf(range));
                write += "; write " + place + " = " + values + " => *";
                read += "; get " + place + " : " + values;
            }
        }
    }
    row("each address of each station and device has a value of its own", write + read);
}
