// The simulated controller's core: frames both ways, refusals, faults, images, motion.
#include <QtTest>
#include <set>

#include "plc/answering.h"
#include "plc/faults.h"
#include "plc/image.h"
#include "plc/motion.h"

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
    void answers_data();
    void answers();
    void refuses_data();
    void refuses();
    void deviceEnds_data();
    void deviceEnds();
    void findsFrames_data();
    void findsFrames();
    void observes();
    void faultPlans_data();
    void faultPlans();
    void disturbs_data();
    void disturbs();
    void repeatsWithSeed();
    void muteEnds();
    void badImages_data();
    void badImages();
    void imageRoundTrip();
    void moves();
};

void TestPlc::answers_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("after");

    QTest::newRow("read D 0") << QByteArray("D,0,0x1234") << readD0 << QByteArray("\x06r34123C\x04")
                              << QByteArray("D,0,4660\n");
    QTest::newRow("read D 100 and 101")
        << QByteArray("D,100,0x1234\nD,101,0xABCD") << QByteArray("\x02raC800000472\x03")
        << QByteArray("\x06r3412CDAB46\x04") << QByteArray("D,100,4660\nD,101,43981\n");
    QTest::newRow("write D 100 and 101")
        << QByteArray() << QByteArray("\x02waC80000043412CDAB4B\x03") << QByteArray("\x06w77\x04")
        << QByteArray("D,100,4660\nD,101,43981\n");
    QTest::newRow("write the last word of D")
        << QByteArray() << QByteArray("\x02waFEFF000201807A\x03") << QByteArray("\x06w77\x04")
        << QByteArray("D,32767,32769\n");
    QTest::newRow("set bit 3 of M 10")
        << QByteArray("M,10,0x8001") << QByteArray("\x02oi1400000800C5\x03")
        << QByteArray("\x06o6F\x04") << QByteArray("M,10,32777\n");
    QTest::newRow("clear bit 3 of M 10")
        << QByteArray("M,10,0xFFFF") << QByteArray("\x02ni140000F7FF05\x03")
        << QByteArray("\x06n6E\x04") << QByteArray("M,10,65527\n");
    QTest::newRow("switch contact TX 35 on") << QByteArray() << QByteArray("\x02ol0400000800C7\x03")
                                             << QByteArray("\x06o6F\x04") << QByteArray("TX,2,8\n");
    QTest::newRow("switch contact CX 15 off")
        << QByteArray("CX,0,0xC000") << QByteArray("\x02nm000000FF7F04\x03")
        << QByteArray("\x06n6E\x04") << QByteArray("CX,0,16384\n");
    QTest::newRow("the last contact TX 2047 with the longest read")
        << QByteArray() << QByteArray("\x02rlFE0000FEB4\x03")
        << "\x06r" + QByteArray(4 * 127, '0') + "B2\x04" << QByteArray();
}

void TestPlc::answers()
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

void TestPlc::refuses_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<Verdict>("verdict");
    const auto row = [](const char *name, const QByteArray &request, Verdict verdict) {
        QTest::newRow(name) << request << verdict;
    };
    row("nothing inside", "\x02\x03", Verdict::Layout);
    row("a command alone", framed("r"), Verdict::Layout);
    row("no byte count", framed("ra000000"), Verdict::Layout);
    row("bytes behind a read", framed("ra0000000200"), Verdict::Layout);
    row("bytes behind a mask", framed("oi140000080000"), Verdict::Layout);
    row("not 00 before the count", framed("ra00000102"), Verdict::Layout);
    row("half a byte of data", framed("wa000000021234123"), Verdict::Layout);
    row("checksum one off", "\x02ra0000000256\x03", Verdict::Checksum);
    row("checksum in lower case", "\x02oi1400000800c5\x03", Verdict::Checksum);
    row("a digit turned on the way", "\x02ra0100000255\x03", Verdict::Checksum);
    row("command in upper case", framed("Ra00000002"), Verdict::Command);
    row("a reply's command", framed("ea00000002"), Verdict::Command);
    row("no such device", framed("rd00000002"), Verdict::Device);
    row("device name for its letter", framed("rD00000002"), Verdict::Device);
    row("lower-case address", framed("rac8000004"), Verdict::Digits);
    row("lower-case data", framed("wa000000023c12"), Verdict::Digits);
    row("colon for a digit", framed("ra0:000002"), Verdict::Digits);
    row("no words", framed("ra00000000"), Verdict::ByteCount);
    row("half a word", framed("ra00000003"), Verdict::ByteCount);
    row("128 words wrapped", framed("ra000000FF"), Verdict::ByteCount);
    row("less data than counted", framed("wa000000041234"), Verdict::ByteCount);
    row("more data than counted", framed("wa0000000212345678"), Verdict::ByteCount);
    row("address between words", framed("ra01000002"), Verdict::OddAddress);
    row("a bit between words", framed("oi1500000800"), Verdict::OddAddress);
    row("write past D's end", framed("waFEFF000412345678"), Verdict::BeyondDevice);
    row("bit past M's end", framed("oi0010000800"), Verdict::BeyondDevice);
    row("two bits to set", framed("oi1400000900"), Verdict::Mask);
    row("no bit to set", framed("oi1400000000"), Verdict::Mask);
    row("an OR mask to clear by", framed("ni1400000800"), Verdict::Mask);
    row("longer than any request", "\x02w" + QByteArray(600, '0') + "\x03", Verdict::TooLong);
    row("one byte too long", framed("wa000000FE" + QByteArray(4 * 127 + 1, '0')), Verdict::TooLong);
}

void TestPlc::refuses()
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

void TestPlc::deviceEnds_data()
{
    QTest::addColumn<QByteArray>("lastWord");
    for (const char *lastWord : {"hFE0F", "iFE0F", "jFE57", "kFE1F", "nFE0F", "aFEFF", "oFE00",
                                 "bFE0F", "cFE0F", "pFEA7", "sFE00", "lFE0F", "mFE0F"})
        QTest::newRow(lastWord) << QByteArray(lastWord);
}

void TestPlc::deviceEnds()
{
    QFETCH(QByteArray, lastWord);
    Memory memory;
    Controller controller(memory);
    QCOMPARE(controller.receive(framed("r" + lastWord + "0002")), zeroReply);
    QCOMPARE(controller.receive(framed("r" + lastWord + "0004")), QByteArray());
    QCOMPARE(controller.counts().of(Verdict::BeyondDevice), qint64(1));
}

void TestPlc::findsFrames_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("served");
    QTest::addColumn<int>("unfinished");
    QTest::addColumn<int>("stray");
    QTest::newRow("two at once") << readD0 + readD0 << 2 << 0 << 0;
    QTest::newRow("garbage around") << "\x03zz\x06" + readD0 + "\x04" << 1 << 0 << 5;
    QTest::newRow("a request begun again") << readD0.left(9) + readD0 << 1 << 1 << 0;
    QTest::newRow("opening byte twice") << '\x02' + readD0 << 1 << 1 << 0;
    QTest::newRow("only a part") << readD0.left(13) << 0 << 1 << 0;
    QTest::newRow("rest of an overlong one")
        << '\x02' + QByteArray(530, '0') + readD0 << 1 << 0 << 9;
}

void TestPlc::findsFrames()
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

void TestPlc::observes()
{
    Memory memory;
    Controller controller(memory);
    QList<Request> seen;
    controller.setObserver([&](const Request &request, Verdict verdict, const QByteArray &reply) {
        QCOMPARE(reply.isEmpty(), verdict != Verdict::Served);
        seen.append(request);
    });
    controller.receive(framed("waC80000043412CDAB") + framed("xa"));
    QCOMPARE(seen.size(), decltype(seen.size())(2));
    QCOMPARE(seen[0].command, 'w');
    QCOMPARE(seen[0].device, 'a');
    QCOMPARE(seen[0].word, 100);
    QCOMPARE(seen[0].values, QVector<quint16>({0x1234, 0xABCD}));
    QCOMPARE(seen[1].frame, framed("xa"));
}

void TestPlc::faultPlans_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("named");
    const auto row = [](const char *list, const char *named) {
        QTest::newRow(list) << QString::fromLatin1(list) << QString::fromLatin1(named);
    };
    row("loss=2%,cut=1%,flip=1%,late=1%:300ms,double=1%,noise=1%,mute=0.1%:2s", "");
    row("loss=100%", "");
    row("los=1%", "\"los\"");
    row("loss=1", "\"loss=1\"");
    row("loss=-1%", "\"loss=-1%\"");
    row("late=1%", "\"late=1%\"");
    row("cut=1%:5ms", "\"cut=1%:5ms\"");
    row("mute=1%:0s", "\"mute=1%:0s\"");
    row("mute=1%:3601s", "\"mute=1%:3601s\"");
    row("loss=1%,loss=1%", "\"loss\"");
    row("loss=1%,", "\"\"");
    row("loss=60%,cut=40.0001%", "100%");
}

void TestPlc::faultPlans()
{
    QFETCH(QString, list);
    QFETCH(QString, named);
    FaultPlan plan;
    const QString wrong = FaultPlan::parse(list, &plan);
    QCOMPARE(wrong.isEmpty(), named.isEmpty());
    QVERIFY2(wrong.contains(named), qPrintable(wrong));
}

void TestPlc::disturbs_data()
{
    QTest::addColumn<QByteArray>("plan");
    QTest::addColumn<int>("pieces");
    QTest::addColumn<int>("shortest");
    QTest::addColumn<int>("longest");
    QTest::addColumn<int>("afterMs");
    QTest::newRow("lost") << QByteArray("loss=100%") << 0 << 0 << 0 << 0;
    QTest::newRow("cut") << QByteArray("cut=100%") << 1 << 1 << 8 << 0;
    QTest::newRow("flipped") << QByteArray("flip=100%") << 1 << 9 << 9 << 0;
    QTest::newRow("late") << QByteArray("late=100%:300ms") << 1 << 9 << 9 << 300;
    QTest::newRow("doubled") << QByteArray("double=100%") << 2 << 9 << 9 << 0;
    QTest::newRow("noisy") << QByteArray("noise=100%") << 1 << 10 << 17 << 0;
    QTest::newRow("mute") << QByteArray("mute=100%:2s") << 0 << 0 << 0 << 0;
    QTest::newRow("none") << QByteArray("loss=0%") << 1 << 9 << 9 << 0;
}

void TestPlc::disturbs()
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

void TestPlc::repeatsWithSeed()
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

void TestPlc::muteEnds()
{
    Faults faults = faultsOf("mute=1%:2s");
    qint64 now = 0;
    while (!faults.transmit(zeroReply, now).isEmpty())
        ++now;
    QVERIFY(faults.transmit(zeroReply, now + 1999).isEmpty());
    QCOMPARE(faults.transmit(zeroReply, now + 2000).constFirst().bytes, zeroReply);
    QCOMPARE(faults.count(Fault::Mute), qint64(2));
}

void TestPlc::badImages_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("wrong");
    const auto row = [](const char *image, const char *wrong) {
        QTest::newRow(wrong) << QByteArray(image) << QString::fromLatin1(wrong);
    };
    row("D,1", "line 1: expected device,word,value");
    row("D,1,2\n\nd,1,2", "line 3: unknown device \"d\"");
    row("D,32768,1", "line 1: no word \"32768\", expected 0 to 32767");
    row("M,-1,1", "line 1: no word \"-1\", expected 0 to 2047");
    row("M,1.5,1", "line 1: no word \"1.5\"");
    row("D,1,65536", "line 1: bad value \"65536\"");
    row("D,1,FF", "line 1: bad value \"FF\"");
}

void TestPlc::badImages()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, wrong);
    Memory memory;
    const QString said = loadImage(image, &memory);
    QVERIFY2(said.startsWith(wrong), qPrintable(said));
}

void TestPlc::imageRoundTrip()
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

void TestPlc::moves()
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

QTEST_GUILESS_MAIN(TestPlc)
#include "tst_plc.moc"
