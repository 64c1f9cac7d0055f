// The simulated controller's core: frames both ways, refusals, images, motion.
#include <QtTest>

#include "frames.h"
#include "plc/answering.h"
#include "plc/image.h"
#include "plc/motion.h"

using namespace plc;

Q_DECLARE_METATYPE(plc::Verdict)

class TestPlc : public QObject
{
    Q_OBJECT

private slots:
    void answers_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QByteArray>("after");

        const auto row = [](const char *name, const char *before, const QByteArray &request,
                            const QByteArray &reply, const char *after) {
            QTest::newRow(name) << QByteArray(before) << request << reply << QByteArray(after);
        };
        row("read D 100 and 101", "D,100,0x1234\nD,101,0xABCD", "\x02raC800000472\x03",
            "\x06r3412CDAB46\x04", "D,100,4660\nD,101,43981\n");
        row("write D 100 and 101", "", "\x02waC80000043412CDAB4B\x03", "\x06w77\x04",
            "D,100,4660\nD,101,43981\n");
        row("set bit 3 of M 10", "M,10,0x8001", "\x02oi1400000800C5\x03", "\x06o6F\x04",
            "M,10,32777\n");
        row("clear bit 3 of M 10", "M,10,0xFFFF", "\x02ni140000F7FF05\x03", "\x06n6E\x04",
            "M,10,65527\n");
        row("switch contact TX 35 on", "", "\x02ol0400000800C7\x03", "\x06o6F\x04", "TX,2,8\n");
        row("the longest read", "", "\x02rlFE0000FEB4\x03",
            "\x06r" + QByteArray(4 * 127, '0') + "B2\x04", "");
    }
    void answers()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, request);
        QFETCH(QByteArray, reply);
        QFETCH(QByteArray, after);
        Memory memory;
        QCOMPARE(loadImage(before, &memory), QString());
        Controller controller(memory);
        QCOMPARE(controller.receive(request), reply);
        QCOMPARE(saveImage(memory), "device,word,value\n" + after);
        QCOMPARE(controller.counts().of(Verdict::Served), qint64(1));
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<Verdict>("verdict");
        const auto row = [](const char *name, const QByteArray &request, Verdict verdict) {
            QTest::newRow(name) << request << verdict;
        };
        row("nothing inside", "\x02\x03", Verdict::Layout);
        row("no byte count", framed("ra000000"), Verdict::Layout);
        row("bytes behind a mask", framed("oi140000080000"), Verdict::Layout);
        row("not 00 before the count", framed("ra00000102"), Verdict::Layout);
        row("half a byte of data", framed("wa000000021234123"), Verdict::Layout);
        row("checksum in lower case", "\x02oi1400000800c5\x03", Verdict::Checksum);
        row("a digit turned on the way", "\x02ra0100000255\x03", Verdict::Checksum);
        row("a reply's command", framed("ea00000002"), Verdict::Command);
        row("no such device", framed("rd00000002"), Verdict::Device);
        row("lower-case address", framed("rac8000004"), Verdict::Digits);
        row("colon for a digit", framed("ra0:000002"), Verdict::Digits);
        row("no words", framed("ra00000000"), Verdict::ByteCount);
        row("half a word", framed("ra00000003"), Verdict::ByteCount);
        row("a read with data", framed("ra000000021234"), Verdict::Layout);
        row("more data than counted", framed("wa0000000212345678"), Verdict::ByteCount);
        row("less data than counted", framed("wa000000041234"), Verdict::ByteCount);
        row("address between words", framed("ra01000002"), Verdict::OddAddress);
        row("write past D's end", framed("waFEFF000412345678"), Verdict::BeyondDevice);
        row("bit past M's end", framed("oi0010000800"), Verdict::BeyondDevice);
        row("two bits to set", framed("oi1400000900"), Verdict::Mask);
        row("an OR mask to clear by", framed("ni1400000800"), Verdict::Mask);
        row("one byte too long", framed("wa000000FE" + QByteArray(4 * 127 + 1, '0')),
            Verdict::TooLong);
    }
    void refuses()
    {
        QFETCH(QByteArray, request);
        QFETCH(Verdict, verdict);
        Memory memory;
        Controller controller(memory);
        QCOMPARE(controller.receive(request), QByteArray());
        QCOMPARE(controller.counts().of(verdict), qint64(1));
        QCOMPARE(controller.counts().of(Verdict::Served), qint64(0));
        QCOMPARE(saveImage(memory), saveImage(Memory()));
        QCOMPARE(controller.receive(readD0), zeroReply);
    }

    void deviceEnds()
    {
        Memory memory;
        Controller controller(memory);
        for (const char *lastWord : {"hFE0F", "iFE0F", "jFE57", "kFE1F", "nFE0F", "aFEFF", "oFE00",
                                     "bFE0F", "cFE0F", "pFEA7", "sFE00", "lFE0F", "mFE0F"}) {
            const QByteArray read = QByteArray("r") + lastWord;
            QVERIFY2(controller.receive(framed(read + "0002")) == zeroReply, lastWord);
            QVERIFY2(controller.receive(framed(read + "0004")).isEmpty(), lastWord);
        }
        QCOMPARE(controller.counts().of(Verdict::BeyondDevice), qint64(13));
    }

    void findsFrames_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("served");
        QTest::addColumn<int>("unfinished");
        QTest::addColumn<int>("stray");
        QTest::newRow("garbage around") << "\x03zz\x06" + readD0 + "\x04" << 1 << 0 << 5;
        QTest::newRow("a request begun again") << readD0.left(9) + readD0 << 1 << 1 << 0;
        QTest::newRow("only a part") << readD0.left(13) << 0 << 1 << 0;
        QTest::newRow("rest of an overlong one")
            << '\x02' + QByteArray(530, '0') + readD0 << 1 << 0 << 9;
    }
    void findsFrames()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, served);
        for (int chunk : {1, 3, 1000}) {
            Memory memory;
            Controller controller(memory);
            QByteArray replies;
            for (int at = 0; at < int(bytes.size()); at += chunk)
                replies += controller.receive(bytes.mid(at, chunk));
            controller.silence();
            controller.silence();
            QCOMPARE(replies, zeroReply.repeated(served));
            QTEST(int(controller.counts().of(Verdict::Unfinished)), "unfinished");
            QTEST(int(controller.counts().strayBytes), "stray");
        }
    }

    void badImages()
    {
        const std::pair<const char *, const char *> images[] = {
            {"D,1,2\n\nd,1,2", "line 3: unknown device \"d\""},
            {"D,32768,1", "line 1: no word \"32768\", expected 0 to 32767"},
            {"D,1,65536", "line 1: bad value \"65536\""},
            {"D,1,FF", "line 1: bad value \"FF\""}};
        for (const auto &[image, wrong] : images) {
            Memory memory;
            const QString said = loadImage(image, &memory);
            QVERIFY2(said.startsWith(wrong), qPrintable(said));
        }
    }

    void imageRoundTrip()
    {
        Memory memory;
        for (char device : Memory::devices()) {
            memory.setWord(device, 0, quint16(device));
            memory.setWord(device, Memory::wordCount(device) - 1, 0xFFFF);
        }
        Memory copy;
        QCOMPARE(loadImage("\xEF\xBB\xBF# stored yesterday\r\n" + saveImage(memory), &copy),
                 QString());
        QCOMPARE(saveImage(copy), saveImage(memory));
    }

    void moves()
    {
        Memory memory;
        memory.setWord('i', 0, 0x8000);
        move(memory, 2500);
        QCOMPARE(memory.word('a', 100), quint16(25));
        QCOMPARE(memory.word('a', 101), quint16(1000));
        QCOMPARE(memory.word('i', 0), quint16(0x8000));
        move(memory, 7500);
        QCOMPARE(memory.word('a', 101), quint16(-1000));
        QCOMPARE(memory.word('i', 0), quint16(0x8001));
        QCOMPARE(memory.word('l', 0), quint16(1));
    }
};

QTEST_GUILESS_MAIN(TestPlc)
#include "tst_plc.moc"
