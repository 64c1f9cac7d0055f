// The frames of the direct port: every request byte for byte, what counts as a good reply, and
// how its characters become words and bits.
#include "panel.h"
#include "tolvane_link/tolvane_link.h"

namespace {

/** A frame as rows show it: "[ra C800 00 04 72]", without the blanks. */
QString wireText(const FRAME_PRO &frame)
{
    QByteArray bytes(reinterpret_cast<const char *>(frame.frame), frame.sendLen);
    return bytes.replace('\x02', '[').replace('\x03', ']');
}

}  // namespace

class FramesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { Panel::self().start(); }

    void request_data()
    {
        // Behind each frame: reply bytes, where their data starts, words read.
        table({"order", "frames"},
              {{"read words", "read D_W 100 x2", "[ra C800 00 04 72]13,2,2"},
               {"read the highest byte address", "read D_W 32767 x1", "[ra FEFF 00 02 AC]9,2,1"},
               {"read a full frame", "read K_W 2433 x127", "[rk 0213 00 FE 8E]513,2,127"},
               {"read the words of bits", "read M_bit 325 x2", "[ri 2800 00 04 69]13,2,2"},
               {"read the word of a contact", "read TX 20 x1", "[rl 0200 00 02 62]9,2,1"},
               {"set a bit", "write M_bit 163 x1 01", "[oi 1400 00 0800 C5]5,0,0"},
               {"clear a bit", "write M_bit 163 x1 00", "[ni 1400 00 F7FF 05]5,0,0"},
               {"set the last bit", "write K_bit 65535 x1 01", "[ok FE1F 00 0080 04]5,0,0"},
               {"clear the first bit", "write CX 0 x1 00", "[nm 0000 00 FEFF 12]5,0,0"},
               {"set a bit of the high byte", "write F_bit 8 x1 FF", "[on 0000 00 0001 BE]5,0,0"},
               {"write words", "write D_W 7 x2 1234ABCD", "[wa 0E00 00 04 1234ABCD 45]5,0,0"},
               {"17 contacts from bit 0", "write CX 16 x17 01",
                "[rm 0200 00 04 65]13,2,2 [wm 0200 00 04 00000000 EA]5,0,0"},
               {"the last 4 bits of a word", "write P_bit 12 x4 01",
                "[rh 0000 00 02 5C]9,2,1 [wh 0000 00 02 0000 21]5,0,0"},
               {"read beyond a frame", "read D_W 0 x128", ""},
               {"write beyond a frame", "write D_W 0 x128", ""},
               {"bits beyond the value buffer", "write M_bit 0 x1025", ""},
               {"as many as an int holds", "write M_bit 15 x2147483647", ""},
               {"write less than nothing", "write D_W 0 x-5", ""},
               {"read an unknown type", "read X_W 0 x1", ""},
               {"write an unknown type", "write X_bit 0 x1 01", ""}});
    }
    void request()
    {
        QFETCH(QString, order);
        QFETCH(QString, frames);
        const VARIABLE asked = item(ranges(order.section(' ', 1)).first());
        if (order.startsWith("read"))
            QCOMPARE(getReadFrame({asked, item("D_W 5 x1")}), 1);
        else
            getWriteFrame(asked);
        QString built;
        for (const FRAME_PRO &frame : driver.frameList) {
            built +=
                wireText(frame) +
                QString("%1,%2,%3").arg(frame.replyLen).arg(frame.dataStart).arg(frame.readCount);
            QCOMPARE(rangeText(frame.var), rangeText(asked));
            QCOMPARE(frame.var.kind, asked.kind);
            QVERIFY(std::memcmp(frame.var.valueBuf, asked.valueBuf, ValueBytes) == 0);
        }
        QCOMPARE(built, frames.remove(' '));
    }

    void verdict()
    {
        const auto verdictOn = [](QByteArray reply) {
            return check_rcv_data(Panel::bytes(reply), int(reply.size()));
        };
        getWriteFrame(item("D_W 0"));
        QCOMPARE(verdictOn("\x06x78\x04"), 2);
        QCOMPARE(verdictOn("\x06x68\x04"), 0);  // the high digit alone is wrong
        Panel::self().start();
        getReadFrame({item("D_W 0")});
        QCOMPARE(verdictOn("\x06r34123C\x04"), 1);
        Panel::self().start();
        handShakeFrame();  // expects no reply
        QCOMPARE(verdictOn("\x06x78\x04"), 0);
    }

    void words_data()
    {
        table({"data", "values"}, {{"colon to question mark: 10 to 15", ":;?><=::", "feab aacd 0"},
                                   {"below the digits and @: 0", "/1@2", "201 0 0"},
                                   {"beyond F: on from 0", "GHZ~", "3701 0 0"},
                                   {"above 127: as 128 to 255", "\x80\xFF\x90\xA0", "9998 0 0"},
                                   {"half a pair", "341", "1034 0 0"}});
    }
    void words()
    {
        QFETCH(QString, data);
        ReplyWords words;
        readReplyWords("\x06r" + data.toLatin1(), 2, 3, words);
        QTEST(QString("%1 %2 %3")
                  .arg(words.word[0], 0, 16)
                  .arg(words.word[1], 0, 16)
                  .arg(words.word[2], 0, 16),
              "values");
        for (int n = 0; n < 48; ++n)
            QCOMPARE(words.bit(n), words.word[n / 16] >> n % 16 & 1);
    }

    void merge_data()
    {
        table({"write", "read", "frame"},
              {{"others keep what was read", "M_bit 94 x3 010001", "A5A55A5A",
                "[wi 0A00 00 04 A5655B5A 43]"},
               {"any byte but 0 sets", "M_bit 94 x3 020080", "00000000",
                "[wi 0A00 00 04 00400100 FA]"},
               {"0 clears", "M_bit 95 x2 0000", "ffffffff", "[wi 0A00 00 04 FF7FFEFF 95]"},
               {"inside one word", "P_bit 2 x2 0000", "FFFFFFFFFFFF", "[wh 0000 00 02 F3FF 66]"},
               {"characters that did not come are 0", "M_bit 94 x3 010001", "",
                "[wi 0A00 00 04 00400100 FA]"}});
    }
    void merge()
    {
        QFETCH(QString, write);
        QFETCH(QString, read);
        QFETCH(QString, frame);
        getWriteFrame(item(ranges(write).first()));
        const QString readFrame = wireText(driver.frameList.first());
        driver.sendState = QueuedWrite;
        mergeBitsIntoWrite("\x06r" + read.toLatin1());
        QCOMPARE(wireText(driver.frameList.takeFirst()), readFrame);
        mergeBitsIntoWrite("\x06r0000");  // a lone frame is left alone
        QCOMPARE(wireText(driver.frameList.first()), frame.remove(' '));
        QVERIFY(driver.dataAreaList.isEmpty());
    }
};

QTEST_GUILESS_MAIN(FramesTest)
#include "tst_frames.moc"
