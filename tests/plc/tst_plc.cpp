// The simulated controller's core: frames both ways, refusals, faults, images, motion.
#include <QtTest>
#include <set>

#include "plc/answering.h"
#include "plc/faults.h"
#include "plc/image.h"
#include "plc/motion.h"
#include "plc/pacing.h"

using namespace plc;

Q_DECLARE_METATYPE(plc::Verdict)

namespace {

/** A request with its opening byte, checksum and closing byte put around it. */
QByteArray framed(const QByteArray &text)
{
    int sum = 0;
    for (char c : text)
        sum += static_cast<unsigned char>(c);
    return '\x02' + text + QByteArray(1, char(sum & 0xFF)).toHex().toUpper() + '\x03';
}

/** A request, or, of one whose parts come apart, the part up to the address or the one behind it.
 */
QByteArray partOf(const QByteArray &text)
{
    const QByteArray cut("ra0000");
    if (text == cut)
        return '\x02' + cut;
    return text.startsWith('~') ? framed(cut + text.mid(1)).mid(1 + cut.size()) : framed(text);
}

constexpr quint32 LateFirst = 3;  // a seed of "late=50%": the first reply is late, the second not

const QByteArray readD0 = "\x02ra0000000255\x03";
const QByteArray zeroReply = "\x06r000032\x04";

/** The faults of a plan text that is right. */
Faults faultsOf(const char *plan, quint32 seed = 1)
{
    FaultPlan parsed;
    const QString wrong = FaultPlan::parse(QLatin1String(plan), &parsed);
    if (!wrong.isEmpty())
        qFatal("%s", qPrintable(wrong));
    return Faults(parsed, seed);
}

}  // namespace

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
        row("half a mask", framed("oi14000008"), Verdict::Layout);
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

    void faultPlans()
    {
        const std::pair<const char *, const char *> plans[] = {
            {"loss=2%,cut=1%,flip=1%,late=1%:300ms,double=1%,noise=1%,mute=0.1%:2s", ""},
            {"los=1%", "\"los\""},
            {"loss=1", "\"loss=1\""},
            {"loss=-1%", "\"loss=-1%\""},
            {"late=1%", "\"late=1%\""},
            {"mute=1%:3601s", "\"mute=1%:3601s\""},
            {"loss=1%,loss=1%", "\"loss\""},
            {"loss=1%,", "\"\""},
            {"loss=60%,cut=40.0001%", "100%"}};
        for (const auto &[list, named] : plans) {
            FaultPlan plan;
            const QString wrong = FaultPlan::parse(list, &plan);
            QVERIFY2(wrong.isEmpty() == QString(named).isEmpty() && wrong.contains(named), list);
        }
    }

    void disturbs_data()
    {
        QTest::addColumn<QByteArray>("plan");
        QTest::addColumn<int>("pieces");
        QTest::addColumn<int>("shortest");
        QTest::addColumn<int>("longest");
        QTest::addColumn<int>("afterMs");
        const auto row = [](const char *plan, int pieces, int shortest, int longest, int afterMs) {
            QTest::newRow(plan) << QByteArray(plan) << pieces << shortest << longest << afterMs;
        };
        row("loss=100%", 0, 0, 0, 0);
        row("cut=100%", 1, 1, 8, 0);
        row("flip=100%", 1, 9, 9, 0);
        row("late=100%:300ms", 1, 9, 9, 300);
        row("double=100%", 2, 9, 9, 0);
        row("noise=100%", 1, 10, 17, 0);
        row("loss=0%", 1, 9, 9, 0);
    }
    void disturbs()
    {
        QFETCH(QByteArray, plan);
        QFETCH(int, pieces);
        QFETCH(int, shortest);
        QFETCH(int, longest);
        Faults faults = faultsOf(plan.constData());
        std::set<int> sizes;
        for (int i = 0; i < 300; ++i) {
            const QVector<Transmission> sent = faults.transmit(zeroReply, i);
            QCOMPARE(int(sent.size()), pieces);
            for (const Transmission &piece : sent) {
                QTEST(piece.afterMs, "afterMs");
                sizes.insert(int(piece.bytes.size()));
                // What has the reply's size differs in one bit when flipped, else not at all.
                int differing = 0;
                for (int at = 0; piece.bytes.size() == zeroReply.size() && at < 9; ++at)
                    differing += int(qPopulationCount(quint8(piece.bytes[at] ^ zeroReply[at])));
                QCOMPARE(differing, plan.startsWith("flip") ? 1 : 0);
            }
        }
        if (pieces > 0) {
            QCOMPARE(*sizes.begin(), shortest);
            QCOMPARE(*sizes.rbegin(), longest);
        }
        faults.heal();
        QCOMPARE(faults.transmit(zeroReply, 300).constFirst().bytes, zeroReply);
    }

    void repeatsWithSeed()
    {
        const char plan[] = "loss=10%,cut=10%,flip=10%,late=10%:5ms,double=10%,noise=10%";
        const auto run = [&plan](quint32 seed, Faults *faults) {
            *faults = faultsOf(plan, seed);
            QByteArray all;
            for (int i = 0; i < 10000; ++i) {
                for (const Transmission &piece : faults->transmit(zeroReply, i))
                    all += char(piece.afterMs) + piece.bytes;
            }
            return all;
        };
        Faults faults;
        const QByteArray first = run(7, &faults);
        QCOMPARE(run(7, &faults), first);
        for (int fault = 0; fault < int(Fault::Mute); ++fault)
            QVERIFY2(qAbs(faults.count(Fault(fault)) - 1000) < 150, faultName(Fault(fault)));
        QVERIFY(run(8, &faults) != first);
    }

    void muteEnds()
    {
        Faults faults = faultsOf("mute=1%:2s");
        qint64 now = 0;
        while (!faults.transmit(zeroReply, now).isEmpty())
            ++now;
        QVERIFY(faults.transmit(zeroReply, now + 1999).isEmpty());
        QCOMPARE(faults.transmit(zeroReply, now + 2000).constFirst().bytes, zeroReply);
        QCOMPARE(faults.count(Fault::Mute), qint64(2));
        faults.heal();
        QCOMPARE(faults.transmit(zeroReply, now + 2001).constFirst().bytes, zeroReply);
    }

    void paces_data()
    {
        QTest::addColumn<QByteArray>("faults");
        QTest::addColumn<int>("turnaroundMs");
        QTest::addColumn<QByteArrayList>("requests");  // "ms text"; "~" for the second half of one
        QTest::addColumn<QByteArrayList>("replies");   // "ms text" when their last byte has left
        const auto row = [](const char *name, const char *plan, int turnaroundMs,
                            const QByteArrayList &requests, const QByteArrayList &replies) {
            QTest::newRow(name) << QByteArray(plan) << turnaroundMs << requests << replies;
        };
        // A byte takes 1 ms: a read of one word 14, its reply 9; of three words 14 and 17.
        row("one", "", 0, {"0 ra00000002"}, {"23 r0000"});
        row("after a turnaround", "", 100, {"0 ra00000002"}, {"123 r0000"});
        row("piled up", "", 0, {"0 ra00000006", "0 ra00000002", "1 ra00000002"},
            {"31 r000000000000", "40 r0000", "51 r0000"});
        row("a long one holds up the next", "", 0, {"0 ra00000020", "15 ra00000002"},
            {"83 r" + QByteArray(64, '0'), "92 r0000"});
        row("late", "late=100%:50ms", 0, {"0 ra00000002"}, {"73 r0000"});
        row("late and overtaken", "late=50%:50ms", 0, {"0 ra00000006", "14 ra00000002"},
            {"37 r0000", "81 r000000000000"});
        row("late while another leaves", "late=50%:15ms", 0, {"0 ra00000006", "14 ra00000002"},
            {"37 r0000", "54 r000000000000"});
        row("twice", "double=100%", 0, {"0 ra00000002"}, {"23 r0000", "32 r0000"});
        row("in two parts", "", 0, {"0 ra0000", "500 ~0002"}, {"516 r0000"});
        row("a part that nobody ends", "", 0, {"0 ra0000", "1008 ~0002"}, {});
    }
    void paces()
    {
        QFETCH(QByteArray, faults);
        QFETCH(int, turnaroundMs);
        QFETCH(QByteArrayList, requests);
        Memory memory;
        Controller controller(memory);
        Faults disturbing = faults.isEmpty() ? Faults() : faultsOf(faults.constData(), LateFirst);
        Pacing pacing(controller, disturbing, {10000, turnaroundMs});
        QByteArrayList replies;
        QByteArray reply;
        for (qint64 ms = 0; ms < 3000; ++ms) {
            while (!requests.isEmpty() && requests.first().split(' ')[0].toLongLong() == ms)
                pacing.receive(partOf(requests.takeFirst().split(' ')[1]), ms * 1000000);
            for (const char byte : pacing.transmit(ms * 1000000)) {
                reply += byte;
                if (byte == '\x04') {
                    replies += QByteArray::number(ms) + ' ' + reply.mid(1, reply.size() - 4);
                    reply.clear();
                }
            }
        }
        QTEST(replies, "replies");
        QCOMPARE(pacing.nextNs(), qint64(-1));
    }

    void holdsNoMoreRepliesThanALineWould()
    {
        Memory memory;
        Controller controller(memory);
        Faults none;
        Pacing pacing(controller, none, {10000, 0});
        pacing.receive(readD0.repeated(100), 0);
        const QByteArray first = pacing.transmit(23000000);
        QCOMPARE(first, zeroReply);
        QCOMPARE(first.size() + pacing.transmit(10000000000).size(), 64 * zeroReply.size());
    }

    void badImages()
    {
        const std::pair<const char *, const char *> images[] = {
            {"D,1", "line 1: expected device,word,value"},
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
        QCOMPARE(loadImage("# stored yesterday\r\n" + saveImage(memory), &copy), QString());
        QCOMPARE(saveImage(copy), saveImage(memory));
        QCOMPARE(saveImage(copy).count('\n'), 1 + 2 * Memory::devices().size());
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
