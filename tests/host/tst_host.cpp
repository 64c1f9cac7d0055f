// The bench host without a line: line settings, ports that cannot be opened, and whether every
// option is documented.
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
    void serialSettings();
    void portIsSetAsNamed();
    void portTroubles();
    void everyOptionIsDocumented();
};

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
