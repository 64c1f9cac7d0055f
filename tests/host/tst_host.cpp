// The bench host without a line: frames in plain words and their explanation, line settings, ports
// that cannot be opened, and whether every option is documented.
#include "host/frames/frame_text.h"
#include "host/line/port_device.h"
#include "host/line/serial_line.h"
#include "host/output/failure.h"

#include "program.h"

#include <QtCore/QTemporaryDir>

#include <tuple>

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

using namespace host;

class TestHost : public QObject
{
    Q_OBJECT

private slots:
    void frameTexts();
    void serialSettings();
    void portIsSetAsNamed();
    void portTroubles();
    void everyOptionIsDocumented();
};

void TestHost::frameTexts()
{
    const char *const setBit = "02 6F 69 31343030 3030 30383030 4335 03";
    const char *const readD = "02 72 61 43383030 3030 3034 3732 03";
    const char *const d100 = "read 2 words of D from word 100";
    const char *const words = "06 72 33343132 43444142 3436 04";  // 0x1234, 0xABCD
    const struct
    {
        const char *frame;
        const char *request;  ///< that the frame replies to; null: it is one
        const char *text;
        const char *fault = "";
        int at = -1;
    } rows[] = {
        {"02 72 61 30303030 3030 3032 3535 03", nullptr, "read 1 word of D from word 0"},
        {"02 77 61 39303031 3030 3034 44323034 32453136 3145 03", nullptr,
         "write 2 words of D from word 200: 1234, 5678"},
        {"02 77 69 32413030 3030 3034 41353635 35393541 3343 03", nullptr,
         "write 2 words of M from word 21: 0x65A5, 0x5A59"},
        {"02 6E 69 31343030 3030 46374646 3035 03", nullptr, "clear bit 3 of M word 10"},
        {"02 6F 6C 30343030 3030 30383030 4337 03", nullptr, "set bit 3 of TX word 2"},
        {"", nullptr, "", "the frame ends too early", 0},
        {"02 78 61 30303030", nullptr, "", "unknown command 78", 1},
        {"02 72 7A 30303030", nullptr, "", "unknown device letter 7A", 2},
        {"02 72 61 63383030", nullptr, "", "expected a digit 0-9 or A-F, found 63", 3},
        {"02 72 61 43393030", nullptr, "", "byte address 201 is odd", 3},
        {"02 72 61 43383030 3030 3033 3731 03", nullptr, "", "byte count 3 is odd", 9},
        {"02 72 61 43383030 3030 3034 3733 03", nullptr, d100,
         "checksum 73, but the bytes add up to 72", 11},
        {"02 72 61 43383030 3030 3034 3732 03 02", nullptr, d100, "1 byte too many", 14},
        {words, "02 72 69 32413030 3030 3034 3732 03", "2 words: 0x1234, 0xABCD"},
        {"06 6F 3646 04", readD, "", "0 bytes of data: not the answer to this request", 2},
        {words, setBit, "", "8 bytes of data: not the answer to this request", 2},
        {"06 72 33343132 434441", "", "1 word: 4660", "checksum CD, but the bytes add up to 3C", 6},
        {"06 72 33343132 43444143 3436 04", readD, "2 words: 4660, 44237",
         "checksum 46, but the bytes add up to 47", 10},
    };
    for (const auto &row : rows) {
        const QByteArray frame = QByteArray::fromHex(row.frame);
        const FrameReading reading =
            row.request ? readReply(frame, QByteArray::fromHex(row.request)) : readRequest(frame);
        QCOMPARE(reading.text, QString(row.text));
        QCOMPARE(reading.fault, QString(row.fault));
        QCOMPARE(reading.faultAt, row.at);
    }
    QCOMPARE(hexText(QByteArray::fromHex(words), 13).size(), 38);
    QCOMPARE(hexText(QByteArray::fromHex(words), 8), QString("06 72 33 .. 34 36 04"));
}

void TestHost::serialSettings()
{
    const std::pair<const char *, int> rows[] = {
        {"115200,8,NONE,1", 10}, {"9600,8,EVEN,1", 11}, {"9600,7,ODD,2", 11}, {"9600,8N1", 10},
        {"9600,8,E,1", 11},      {"fast,8,NONE,1", 0},  {"0,8,NONE,1", 0},    {"9600,9,NONE,1", 0},
        {"9600,8,MARK,1", 0},    {"9600,8,NONE,3", 0},  {"9600,8,NONE", 0},   {"9600,8N", 0}};
    for (const auto &[text, bitsPerByte] : rows) {
        int bits = 0;  // refused
        try {
            bits = SerialSettings::parse(text).bitsPerByte();
        } catch (const Failure &failure) {
            QVERIFY(QString(failure.what()).contains(text));
            QCOMPARE(failure.status(), BadInput);
        }
        QVERIFY2(bits == bitsPerByte, text);
    }
}

// A pseudo-terminal keeps the pace and the stop bits that it is asked for, but no parity.
void TestHost::portIsSetAsNamed()
{
    const std::tuple<const char *, speed_t, bool> rows[] = {{"9600,8,NONE,1", B9600, false},
                                                            {"19200,8,NONE,2", B19200, true}};
    for (const auto &[settings, speed, twoStopBits] : rows) {
        const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
        QVERIFY(master >= 0 && ::grantpt(master) == 0 && ::unlockpt(master) == 0);
        SerialLine line(QString::fromLocal8Bit(::ptsname(master)),
                        {SerialSettings::parse(settings), false});
        QVERIFY2(line.open(), qPrintable(line.errorText()));
        termios port;
        QCOMPARE(::tcgetattr(master, &port), 0);
        ::close(master);
        QCOMPARE(::cfgetospeed(&port), speed);
        QCOMPARE((port.c_cflag & CSTOPB) != 0, twoStopBits);
    }
}

void TestHost::portTroubles()
{
    const QTemporaryDir folder;
    QVERIFY(QDir::setCurrent(folder.path()) && QFile::link("/dev/null", "plc"));
    QCOMPARE(portDevice("plc"), QString("/dev/null"));
    QCOMPARE(portDevice("ttyS1"), QString("/dev/ttyS1"));
    QCOMPARE(portTrouble("/dev/null", "as said"), QString("it is no serial port"));
    QCOMPARE(portTrouble("/dev/ptmx", "as said"), QString("as said"));
    QVERIFY(portTrouble(portDevice("nonesuch"), "").contains("no device /dev/nonesuch"));
    const QString device = folder.filePath("plc");
    QFile lock("/tmp/LCK.." + QString(device).replace('/', '_'));
    QVERIFY(lock.open(QIODevice::WriteOnly));
    lock.write(QByteArray::number(::getppid()) + "\npanel\n");
    lock.close();
    const QString said = portTrouble(device, "");
    lock.remove();
    QVERIFY2(hasMatch(said, "process \\d+ \\(panel\\) holds the lock /tmp/LCK\\.\\._.*_plc"),
             qPrintable(said));
}

void TestHost::everyOptionIsDocumented()
{
    static const QRegularExpression commandRow("^  ([a-z]+) +",
                                               QRegularExpression::MultilineOption);
    static const QRegularExpression optionRow("^  (?:-., )?(--[a-z-]+)",
                                              QRegularExpression::MultilineOption);
    static const QRegularExpression defaultValue("\\(default: [^)=]+\\)");
    QVector<QStringList> calls{{"plc", PLC_PROGRAM}};
    const QString usage = runProgram(HOST_PROGRAM, {"--help"}).out;
    for (auto rows = commandRow.globalMatch(usage); rows.hasNext();)
        calls.append({"host", HOST_PROGRAM, rows.next().captured(1)});
    QVERIFY(calls.size() >= 11);
    for (QStringList &call : calls) {
        const QString page = QString(PROJECT_SOURCES "/%1/tolvane-%1.").arg(call.takeFirst());
        const QString program = call.takeFirst();
        const Result help = runProgram(program, call + QStringList{"--help"});
        QCOMPARE(help.status, 0);
        QStringList words = call;
        for (auto options = optionRow.globalMatch(help.out); options.hasNext();)
            words += options.next().captured(1);
        QVERIFY(words.size() > 1);
        QStringList defaults;
        for (auto found = defaultValue.globalMatch(help.out.simplified()); found.hasNext();)
            defaults += found.next().captured();
        QFile in(page + "1");
        QVERIFY(in.open(QIODevice::ReadOnly));
        const QByteArray manual = in.readAll().replace("\\-", "-").simplified();
        for (const QString &word : words + defaults)
            QVERIFY2(manual.contains(word.toLatin1()), qPrintable(in.fileName() + ' ' + word));
        const QString complete =
            "source %1; COMP_WORDS=(\"$@\" --); COMP_CWORD=$#; "
            "${0/*tolvane-/_tolvane_} \"$1\"; echo \" ${COMPREPLY[*]} \"";
        const Result offered = runProgram(
            "bash", QStringList{"-c", complete.arg(page + "bash"), program, program} + call);
        for (const QString &word : words.mid(int(call.size())))
            QVERIFY2(offered.out.contains(' ' + word + ' '), qPrintable(offered.out + word));
    }
}

QTEST_GUILESS_MAIN(TestHost)
#include "tst_host.moc"
