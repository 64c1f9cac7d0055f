// The bench host without a line: frames in plain words and their explanation, line settings, ports
// that cannot be opened, and how command lines are read and documented.
#include "host/failure.h"
#include "host/frame_text.h"
#include "host/line/serial_settings.h"
#include "host/port_device.h"

#include "program.h"

#include <QtCore/QTemporaryDir>

#include <unistd.h>

using namespace host;

class TestHost : public QObject
{
    Q_OBJECT

private slots:
    void frameTexts();
    void serialSettings();
    void portTroubles();
    void fullDiskIsAFailure();
    void command_data();
    void command();
    void everyOptionIsDocumented();

private:
    QString file(const char *name, const QByteArray &content = QByteArray()) const
    {
        QFile out(m_folder.filePath(name));
        if (!content.isEmpty() && out.open(QIODevice::WriteOnly))
            out.write(content);
        return out.fileName();
    }

    QTemporaryDir m_folder;
};

void TestHost::frameTexts()
{
    const char *const anyRequest = "";
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
        {"02 72 61 43383030 3030 3034 37", nullptr, d100, "the frame ends too early", 12},
        {"02 72 61 43383030 3030 3034 3732 04", nullptr, d100, "expected ETX (03), found 04", 13},
        {"02 72 61 43383030 3030 3034 3732 03 02", nullptr, d100, "1 byte too many", 14},
        {words, "02 72 69 32413030 3030 3034 3732 03", "2 words: 0x1234, 0xABCD"},
        {words, anyRequest, "2 words: 4660, 43981"},
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

void TestHost::portTroubles()
{
    const QTemporaryDir folder;
    QVERIFY(QDir::setCurrent(folder.path()) && QFile::link("/dev/null", "plc"));
    QCOMPARE(portDevice("plc"), QString("/dev/null"));
    QCOMPARE(portDevice("ttyS1"), QString("/dev/ttyS1"));
    QCOMPARE(portTrouble("/dev/null", "as said"), QString("as said"));
    QVERIFY(portTrouble(portDevice("nonesuch"), "").contains("no device /dev/nonesuch"));
    QFile lock("/tmp/LCK..null");
    QVERIFY(lock.open(QIODevice::WriteOnly));
    lock.write(QByteArray::number(::getppid()) + "\npanel\n");
    lock.close();
    const QString said = portTrouble("/dev/null", "");
    lock.remove();
    QVERIFY2(hasMatch(said, "process \\d+ \\(panel\\) holds the lock /tmp/LCK\\.\\.null"),
             qPrintable(said));
}

void TestHost::command_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("said");  // a pattern
    QByteArray input;
    const auto row = [&](const char *name, const QStringList &arguments, int status,
                         const char *said) {
        QTest::newRow(name) << arguments << input << status << QString(said);
    };
    const auto refused = [&](const char *name, const QStringList &arguments, const char *said) {
        row(name, arguments, BadInput, said);
    };
    const QString tags = file("tags.csv", "address,name\nD_W:100:float,level\nM_bit:20.5,lamp\n");
    const QString wrong =
        file("wrong.csv", "name,address\nlevel,D_W:100\n\nflood,D_W:32767:float\n");

    refused("no command", {}, "no command given");
    refused("unknown command", {"dance"}, "no command \"dance\"");
    refused("no driver", {"demo", "--driver", "/nowhere/driver.so"}, "/nowhere/driver.so");
    refused("no driver's exports", {"info", "--driver", "libQt" TOLVANE_QT "Core.so." TOLVANE_QT},
            "does not export intf_");
    refused("empty option", {"read", "--port", "", "D_W:1"}, "--port is empty");
    row("options before the command", {"--count", "1", "series", "TX:5"}, 0, "TX:5");
    row("version", {"-v"}, 0, "^tolvane-host 2");
    row("not ASCII", {"check", QString::fromUtf8("F\xC3\xBCll:1")}, 1, "\"F\xC3\xBCll\"");

    row("info", {"info"}, 0,
        "^driver +tolvane_link 2\\.0[^$]*115200,8,NONE,1[^$]*"
        "M_bit +DDDD\\.DD +0\\.0 +2047\\.15 +bit +read and write\n");
    row("check", {"check", "D_W:0x10", tags}, 0,
        "^D_W:0x10: valid, 10 words .*\nlevel: valid, 2 words .*\nlamp: valid, 1 bit .*number 325");
    row("check what is not valid",
        {"check", "D_W:32767x2", "M_bit:1.16", "X:1", "D_W:1:real", wrong}, 1,
        "^argument 1: .*from 0 to 32767\nargument 2: .*\"1\\.16\".*DDDD\\.DD\nargument 3: "
        ".*\"X\".*\n"
        "  P_W, .*\nargument 4: no format \"real\"[^$]*\nlevel: valid.*\nwrong\\.csv:4: tag "
        "\"flood\": "
        ".*32767\n  \\(a value takes 2 words\\)\n$");
    row("series of 32-bit values to the end",
        {"series", "D_W:32766", "--count", "2", "--step", "-2"}, 0,
        "32766 .*\n.*32767 [^$]*beyond D_W:32767");

    // 14 + 9 bytes of 11 bits
    row("plan on a slow line", {"plan", "D_W:5", "--serial", "9600,8,EVEN,1", "--turnaround", "10"},
        0, "26\\.35 ms  D_W:5\n[^$]*1 request, 23 bytes, 36\\.35 ms: 27\\.5 cycles");
    row("plan a gap that is bridged", {"plan", "D_W:0", "D_W:9", "--block-limit", "10"}, 0,
        "D_W:0x10 +10 +8 ");
    row("plan what no block limit makes shorter", {"plan", "D_W:0", "--suggest"}, 0,
        "of 1: 1 request, 23 bytes, 2\\.00 ms\n +as long as with 64\n$");
    row("plan stations apart", {"plan", "2/D_W:1", "D_W:5", "1/D_W:2", "2/M_bit:16.0", "M_W:17"}, 0,
        " 1/M_W:17 .*  M_W:17\n.* 1/D_W:2x4 .*  D_W:5, 1/D_W:2\n.* 2/M_W:16 .*  2/M_bit:16\\.0\n"
        ".* 2/D_W:1 .*  2/D_W:1\n");
    row("plan in JSON", {"plan", "--json", tags, "D_W:106x2:uint32"}, 0,
        "\"address\": \"M_W:20\"[^}]*\"lamp\"[^$]*\"address\": \"D_W:100\",\\s+\"bridged\": 4,"
        "\\s+\"count\": 10,[^}]*\"station\": 1,\\s+\"tags\": "
        "\\[\\s+\"level\",\\s+\"D_W:106x2:uint32\"[^$]*"
        "\"requestPerTag\": \\{[^}]*\"requests\": 3");
    row("soak", {"soak", "--exchanges", "2000", "--json"}, 0, "\"right\": true");
    refused("soak no number", {"soak", "--exchanges", "many"}, "--exchanges \"many\"");
    refused("soak no fault", {"soak", "--faults", "lost=2%"}, "fault \"lost\"");
    refused("soak a real controller", {"soak", "--port", "/dev/null"}, "expected --overwrite");
    refused("draw into nowhere", {"plan", "D_W:5", "--svg", "/nowhere/plan.svg"},
            "/nowhere/plan\\.svg: No such file");

    const QByteArray request = "02 72 61 43 38 30 30 30 30 30 34 37 32 03";
    const QByteArray reply = "06 72 33 34 31 32 43 44 41 42 34 36 04";
    const QByteArray traced = "10:00:00.123Z  ->  " + request + "  read 2\n10:00:00.126Z  <-  ";
    const QByteArray heard =
        "> 2026/11/23 04:36:51.000386886  length=3 from=0 to=2\n 02 72 61\n"
        "> 2026/11/23 04:36:51.000386999  length=11 from=3 to=13\n"
        " 43 38 30 30 30 30 30 34 37 32 03                 C800000472.\n--\n";
    const QByteArray answered =
        "< 2026/11/23 04:36:51.000387072  length=13 from=0 to=12\n " + reply + "\n--\n";

    row("explain frames", {"explain", QString(request).remove(' '), QString(reply), "066F364604"},
        0,
        "-> 02 72 61 .*\n   read 2 words of D from word 100\n   checksum 72: right\n\n<- 06 .*\n"
        "   2 words: 4660, 43981\n.*right\n\n<- .*\n   acknowledged\n[^$]*3 frames, none wrong\n$");
    refused("explain no frame", {"explain", "02", "hello"}, "\"hello\" is no frame; expected");
    input = traced + reply + "  2 words\n";
    row("explain a trace", {"explain", file("trace", input)}, 0,
        "^10:00:00.123Z\n-> [^$]*\n10:00:00.126Z\n<- [^$]*2 words: 4660, 43981[^$]*none wrong");
    input += traced + reply + "  refused: too early: after 0.1 ms\n" + traced + "-\n";
    row("explain only what is wrong, with its request", {"explain", "--wrong", "-"}, 1,
        "^10:00:00.123Z\n-> 02 [^$]*host: too early[^$]*Z\n-> 02 [^$]*Z\n<- no reply\n\n6 frames, "
        "2");
    input = traced + "06 72 33 3";
    row("explain a trace that is cut in its last line", {"explain"}, 1,
        "<- 06 72 33\n[^$]*wrong: [^$]*\\(the last line is cut\\)[^$]*2 frames, 1 wrong");
    input = traced + reply + "\n10:00:0";
    row("explain a trace that is cut in its last time", {"explain"}, 0, "2 frames, none wrong\n$");
    input = heard + answered;
    row("explain what socat heard, a request in two pieces", {"explain", "-"}, 0,
        "^2026/11/23 04:36:51.000386886\n-> 02 72 61 43 [^$]*2 words: 4660, 43981[^$]*2 frames, n");
    input = heard + heard + answered;
    row("explain a request that socat heard twice", {"explain", "--wrong", "-"}, 1,
        "D from word 100\n[^$]*<- no reply\n\n4 frames, 1 wrong\n$");
    input = "something else\n" + request + "\n";
    refused("explain no trace", {"explain", "-"}, "input:1: \"something else\": expected");
}

void TestHost::command()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, input);
    QFETCH(QString, said);
    const Result result = runProgram(HOST_PROGRAM, arguments, input);
    QTEST(result.status, "status");
    QVERIFY2(hasMatch(result.out + result.err, said), qPrintable(result.out + result.err));
    QVERIFY(result.status != BadInput || result.out.isEmpty());
    for (const QString &line : result.out.split('\n'))
        QVERIFY2(line.size() <= 100, qPrintable(line));
}

void TestHost::fullDiskIsAFailure()
{
    QProcess host;
    host.setStandardOutputFile("/dev/full");
    host.start(HOST_PROGRAM, {"info", "--json"});
    QVERIFY(host.waitForFinished() && host.readAllStandardError().contains("No space left"));
    QCOMPARE(host.exitCode(), 1);
}

void TestHost::everyOptionIsDocumented()
{
    static const QRegularExpression commandRow("^  ([a-z]+) +",
                                               QRegularExpression::MultilineOption);
    static const QRegularExpression optionRow("^  (?:-., )?(--[a-z-]+)",
                                              QRegularExpression::MultilineOption);
    QVector<QStringList> calls{{"plc", PLC_PROGRAM}};
    const QString usage = runProgram(HOST_PROGRAM, {"--help"}).out;
    for (auto rows = commandRow.globalMatch(usage); rows.hasNext();)
        calls.append({"host", HOST_PROGRAM, rows.next().captured(1)});
    QVERIFY(calls.size() >= 12);
    for (QStringList &call : calls) {
        const QString page = QString(PROJECT_SOURCES "/%1/tolvane-%1.").arg(call.takeFirst());
        const QString program = call.takeFirst();
        const Result help = runProgram(program, call + QStringList{"--help"});
        QCOMPARE(help.status, 0);
        QStringList words = call;
        for (auto options = optionRow.globalMatch(help.out); options.hasNext();)
            words += options.next().captured(1);
        QVERIFY(words.size() > 1);
        for (const char *kind : {"1", "bash"}) {
            QFile in(page + kind);
            QVERIFY(in.open(QIODevice::ReadOnly));
            const QByteArray text = in.readAll().replace("\\-", "-");
            for (const QString &word : std::as_const(words))
                QVERIFY2(text.contains(word.toLatin1()), qPrintable(page + kind + ' ' + word));
        }
    }
}

QTEST_GUILESS_MAIN(TestHost)
#include "tst_host.moc"
