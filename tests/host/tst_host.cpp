// The bench host: frames in plain words, line settings, and the command line.
#include "host/failure.h"
#include "host/frame_text.h"
#include "host/line/serial_settings.h"

#include <QtCore/QProcess>
#include <QtTest/QtTest>

using namespace host;

namespace {

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

const QByteArray ReadD100x2 = hex("02 72 61 43383030 3030 3034 3732 03");
const QByteArray ReplyA = hex("06 72 33343132 43444142 3436 04");  // 0x1234, 0xABCD

}  // namespace

class TestHost : public QObject
{
    Q_OBJECT

private slots:
    void requestText_data();
    void requestText();
    void replyText_data();
    void replyText();
    void longFramesAreShortened();
    void serialSettings_data();
    void serialSettings();
    void badInput_data();
    void badInput();
};

void TestHost::requestText_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("faultAt");

    const auto good = [](const char *name, const char *frame, const char *text) {
        QTest::newRow(name) << hex(frame) << QString(text) << QString() << -1;
    };
    good("read", "02 72 61 43383030 3030 3034 3732 03", "read 2 words of D from word 100");
    good("read one", "02 72 61 30303030 3030 3032 3535 03", "read 1 word of D from word 0");
    good("write numbers", "02 77 61 39303031 3030 3034 44323034 32453136 3145 03",
         "write 2 words of D from word 200: 1234, 5678");
    good("write bit memory", "02 77 69 32413030 3030 3034 41353635 35393541 3343 03",
         "write 2 words of M from word 21: 0x65A5, 0x5A59");
    good("set", "02 6F 69 31343030 3030 30383030 4335 03", "set bit 3 of M word 10");
    good("clear", "02 6E 69 31343030 3030 46374646 3035 03", "clear bit 3 of M word 10");
    good("set in contacts", "02 6F 6C 30343030 3030 30383030 4337 03", "set bit 3 of TX word 2");

    const auto bad = [](const char *name, const char *frame, const char *text, const char *fault,
                        int at) {
        QTest::newRow(name) << hex(frame) << QString(text) << QString(fault) << at;
    };
    bad("nothing", "", "", "the frame ends too early", 0);
    bad("a reply", "06 77 3737 04", "", "expected STX (02), found 06", 0);
    bad("command", "02 78 61 30303030 3030 3032 3535 03", "", "unknown command 78", 1);
    bad("device", "02 72 7A 30303030 3030 3032 3535 03", "", "unknown device letter 7A", 2);
    bad("small digit", "02 72 61 63383030 3030 3034 3732 03", "",
        "expected a digit 0-9 or A-F, found 63", 3);
    bad("odd address", "02 72 61 43393030 3030 3034 3733 03", "", "byte address 201 is odd", 3);
    bad("odd count", "02 72 61 43383030 3030 3033 3731 03", "", "byte count 3 is odd", 9);
    bad("checksum", "02 72 61 43383030 3030 3034 3733 03", "read 2 words of D from word 100",
        "checksum 73, but the bytes add up to 72", 11);
    bad("cut", "02 72 61 43383030 3030 3034 37", "read 2 words of D from word 100",
        "the frame ends too early", 12);
    bad("end", "02 72 61 43383030 3030 3034 3732 04", "read 2 words of D from word 100",
        "expected ETX (03), found 04", 13);
    bad("more", "02 72 61 43383030 3030 3034 3732 03 02", "read 2 words of D from word 100",
        "1 byte too many", 14);
    bad("data missing", "02 77 61 39303031 3030 3034 44323034 3145 03", "",
        "expected a digit 0-9 or A-F, found 03", 17);
}

void TestHost::requestText()
{
    QFETCH(QByteArray, frame);
    const FrameReading reading = readRequest(frame);
    QTEST(reading.text, "text");
    QTEST(reading.fault, "fault");
    QTEST(reading.faultAt, "faultAt");
}

void TestHost::replyText_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("fault");

    const QByteArray readM = hex("02 72 69 32413030 3030 3034 3732 03");
    const QByteArray setBit = hex("02 6F 69 31343030 3030 30383030 4335 03");
    QTest::newRow("numbers") << ReplyA << ReadD100x2 << "2 words: 4660, 43981"
                             << "";
    QTest::newRow("bit memory") << ReplyA << readM << "2 words: 0x1234, 0xABCD"
                                << "";
    QTest::newRow("unknown request") << ReplyA << QByteArray() << "2 words: 4660, 43981"
                                     << "";
    QTest::newRow("acknowledged") << hex("06 6F 3646 04") << setBit << "acknowledged"
                                  << "";
    QTest::newRow("none") << QByteArray() << setBit << "no reply"
                          << "no reply";
    QTest::newRow("of another request") << hex("06 6F 3646 04") << ReadD100x2 << ""
                                        << "0 bytes of data do not answer this request";
    QTest::newRow("data for a write") << ReplyA << setBit << ""
                                      << "8 bytes of data do not answer this request";
    QTest::newRow("cut") << ReplyA.left(9) << QByteArray() << "1 word: 4660"
                         << "checksum CD, but the bytes add up to 3C";
    QTest::newRow("flipped") << hex("06 72 33343132 43444143 3436 04") << ReadD100x2
                             << "2 words: 4660, 44237"
                             << "checksum 46, but the bytes add up to 47";
}

void TestHost::replyText()
{
    QFETCH(QByteArray, reply);
    QFETCH(QByteArray, request);
    const FrameReading reading = readReply(reply, request);
    QTEST(reading.text, "text");
    QTEST(reading.fault, "fault");
}

void TestHost::longFramesAreShortened()
{
    QCOMPARE(hexText(hex("06 77 3737 04"), 5), QString("06 77 37 37 04"));
    QCOMPARE(hexText(ReplyA, 8), QString("06 72 33 .. 34 36 04"));
}

void TestHost::serialSettings_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("bitsPerByte");  // 0: refused
    QTest::newRow("the usual") << "115200,8,NONE,1" << 10;
    QTest::newRow("parity counts") << "9600,8,EVEN,1" << 11;
    QTest::newRow("two stop bits") << "9600,7,ODD,2" << 11;
    QTest::newRow("no baud rate") << "fast,8,NONE,1" << 0;
    QTest::newRow("standing still") << "0,8,NONE,1" << 0;
    QTest::newRow("nine bits") << "9600,9,NONE,1" << 0;
    QTest::newRow("as others write it") << "9600,8N1" << 10;
    QTest::newRow("parity as a letter") << "9600,8,E,1" << 11;
    QTest::newRow("parity") << "9600,8,none,1" << 0;
    QTest::newRow("stop bits") << "9600,8,NONE,3" << 0;
    QTest::newRow("too few") << "9600,8,NONE" << 0;
}

void TestHost::serialSettings()
{
    QFETCH(QString, text);
    int bits = 0;
    try {
        bits = SerialSettings::parse(text).bitsPerByte();
    } catch (const Failure &failure) {
        QVERIFY(QString(failure.what()).contains(text));
        QCOMPARE(failure.status(), BadInput);
    }
    QTEST(bits, "bitsPerByte");
}

void TestHost::badInput_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("no command") << QStringList{} << "no command given";
    QTest::newRow("unknown command") << QStringList{"dance"} << "no command \"dance\"";
    QTest::newRow("unknown option") << QStringList{"demo", "--fast"} << "fast";
    QTest::newRow("too much") << QStringList{"demo", "D_W:1"} << "unexpected argument \"D_W:1\"";
    QTest::newRow("no driver") << QStringList{"demo", "--driver", "/nowhere/driver.so"}
                               << "/nowhere/driver.so";
    QTest::newRow("no driver's exports")
        << QStringList{"demo", "--driver", "libQt" TOLVANE_QT "Core.so." TOLVANE_QT}
        << "does not export intf_";
}

void TestHost::badInput()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QProcess host;
    host.start(HOST_PROGRAM, arguments);
    QVERIFY(host.waitForFinished());
    QCOMPARE(host.exitCode(), int(BadInput));
    const QString said = QString::fromUtf8(host.readAllStandardError());
    QVERIFY2(said.contains(message), qPrintable(said));
    QVERIFY(host.readAllStandardOutput().isEmpty());
}

QTEST_GUILESS_MAIN(TestHost)
#include "tst_host.moc"
