// The commands that talk to a controller, as processes on real pseudo-terminals: what they print,
// the guards of the loop against a misbehaving controller, and a line that goes and comes back.
#include "host/controller_process.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <csignal>
#include <memory>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

using namespace host;

namespace {

constexpr int Patience = 20000;

// What the controller holds at the start: two words that are 1.5 as a float, and M 20.5, M 20.7.
const QByteArray Memory =
    "D,100,1\nD,101,2\nD,102,65535\nD,110,0\nD,111,16320\nD,300,30\nD,500,50\nM,20,160\n";

struct Result
{
    int status = -1;
    QString out;
    QString err;
};

Result collect(QProcess &process)
{
    Result result;
    if (process.waitForFinished(Patience) && process.exitStatus() == QProcess::NormalExit)
        result.status = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

Result runHost(const QStringList &arguments)
{
    QProcess process;
    process.start(HOST_PROGRAM, arguments);
    return collect(process);
}

QString read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void save(const QString &path, const QByteArray &text)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
}

}  // namespace

class TestOnline : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void command_data();
    void command();
    void badInput_data();
    void badInput();
    void jsonForPrograms();
    void recipeThereAndBack();
    void recipeThatDoesNotArrive();
    void traceTellsEveryFrame();
    void guards_data();
    void guards();
    void lineGoesAndComesBack_data();
    void lineGoesAndComesBack();
    void liveTable();

private:
    QString file(const char *name) const { return m_folder.filePath(QString(name)); }
    QStringList plcArguments(const QStringList &more = {}) const
    {
        return QStringList{"--still", "--image", file("memory.csv")} + more;
    }

    QTemporaryDir m_folder;
    std::unique_ptr<ControllerProcess> m_controller;  // a good one, answering at once
};

void TestOnline::initTestCase()
{
    save(file("memory.csv"), Memory);
    save(file("tags.csv"), "name,address,format\nlevel,D_W:110,float\nlamp,M_bit:20.5,\n");
    save(file("wrong.csv"), "D_W:600,1\nD_W:99999,1\n");
    m_controller = std::make_unique<ControllerProcess>(PLC_PROGRAM, plcArguments());
}

void TestOnline::command_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("controller");  // arguments of a controller of its own
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("out");  // patterns
    QTest::addColumn<QString>("err");

    const QStringList good;
    const QStringList mute{"--faults", "loss=100%"};
    QTest::newRow("read words") << QStringList{"read", "D_W:100x3"} << good << 0
                                << "^D_W:100x3  1, 2, 65535\n$"
                                << "^$";
    QTest::newRow("read a tag file, and a number with its sign")
        << QStringList{"read", file("tags.csv"), "D_W:102:int16"} << good << 0
        << "^level +D_W:110 +1\\.5\nlamp +M_bit:20\\.5 +1\nD_W:102:int16 +-1\n$"
        << "^$";
    QTest::newRow("read from a controller that says nothing")
        << QStringList{"read", "D_W:100", "D_W:101"} << mute << 1 << "^$"
        << "D_W:100: .*\n.*D_W:101: ";
    QTest::newRow("read over a serial device server")
        << QStringList{"read", "D_W:300"} << QStringList{"--tcp", "0"} << 0 << "  30\n"
        << "^$";
    QTest::newRow("write words, a float, bits of a word, a contact")
        << QStringList{"write", "D_W:700x3=7,8,9", "heat=D_W:710:float=-2.5", "M_bit:30.3x2=1,1",
                       "TX:5=1"}
        << good << 0
        << "^D_W:700x3 .*= 7, 8, 9  acknowledged\nheat +D_W:710 = -2\\.5  acknowledged\n"
           "M_bit:30\\.3x2 .*= 1, 1  acknowledged\nTX:5 .*= 1  acknowledged\n$"
        << "^$";
    QTest::newRow("what was written is there, and nothing beside it")
        << QStringList{"read", "D_W:699x5", "D_W:710:float", "M_W:30:hex", "TX:4x3"} << good << 0
        << "D_W:699x5 +0, 7, 8, 9, 0\n.*-2\\.5\n.*0x0018\n.*0, 1, 0\n"
        << "^$";
    QTest::newRow("write to a controller that says nothing")
        << QStringList{"write", "D_W:700=1"} << mute << 1
        << "^D_W:700 = 1  FAILED: no reply to 2 requests of 60 ms each\n"
        << "^$";
    QTest::newRow("watch, a line for each value")
        << QStringList{"watch", "D_W:300", "level=D_W:110:float", "--for", "0.3"} << good << 0
        << "^\\S+T\\S+  level  D_W:110  1\\.5\n\\S+  D_W:300  30\n$"
        << "exchanges in 0\\.[34] s .*, 0 errors\n";
    QTest::newRow("watch, for a spreadsheet")
        << QStringList{"watch", "two=D_W:100x2", "--for", "0.3", "--csv", "-"} << good << 0
        << "^time,name,address,value\n[^,]*,two\\[0\\],D_W:100,1\n[^,]*,two\\[1\\],D_W:101,2\n$"
        << "[1-9]\\S* % of the line's";
    QTest::newRow("a controller of its own")
        << QStringList{"read", "M_bit:20.5", "--simulate"} << good << 0 << "^M_bit:20\\.5  0\n$"
        << "talking to a simulated controller";
    QTest::newRow("a missing device")
        << QStringList{"read", "D_W:1", "--port", "/nowhere/tty"} << good << 1 << "^$"
        << "/nowhere/tty";
}

void TestOnline::command()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, controller);
    QFETCH(int, status);
    QFETCH(QString, out);
    QFETCH(QString, err);

    std::unique_ptr<ControllerProcess> own;
    if (!controller.isEmpty())
        own = std::make_unique<ControllerProcess>(PLC_PROGRAM, plcArguments(controller));
    if (!arguments.contains("--port") && !arguments.contains("--simulate"))
        arguments += {controller.contains("--tcp") ? "--tcp" : "--port",
                      own ? own->device() : m_controller->device()};
    const Result result = runHost(arguments + QStringList{"--timeout", "60", "--retries", "2"});
    QVERIFY2(result.status == status, qPrintable(result.err));
    QVERIFY2(result.out.contains(QRegularExpression(out)), qPrintable(result.out));
    QVERIFY2(result.err.contains(QRegularExpression(err)), qPrintable(result.err));
}

void TestOnline::badInput_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("nothing to read") << QStringList{"read"} << "expected ADDRESS";
    QTest::newRow("beyond the last word")
        << QStringList{"read", "D_W:99999"} << "outside D_W, which reaches from 0 to 32767";
    QTest::newRow("two lines") << QStringList{"read", "D_W:1", "--simulate", "--tcp", "a:1"}
                               << "expected --port, --tcp or --simulate";
    QTest::newRow("no port number")
        << QStringList{"read", "D_W:1", "--tcp", "box"} << "\"box\": expected HOST:PORT";
    QTest::newRow("block limit") << QStringList{"read", "D_W:1", "--block-limit", "128"}
                                 << "--block-limit \"128\": expected a number from 1 to 127";
    QTest::newRow("line settings")
        << QStringList{"read", "D_W:1", "--serial", "fast"} << "\"fast\"";
    QTest::newRow("trace") << QStringList{"read", "D_W:1", "--trace", "/nowhere/t"} << "/nowhere/t";
    QTest::newRow("no value") << QStringList{"write", "D_W:1"} << "expected ADDRESS=VALUE";
    QTest::newRow("value too high") << QStringList{"write", "D_W:1=70000"} << "70000";
    QTest::newRow("too few values") << QStringList{"write", "D_W:1x3=1,2"} << "\"1,2\"";
    QTest::newRow("for ever") << QStringList{"watch", "D_W:1", "--for", "ever"}
                              << "\"ever\": expected seconds";
    QTest::newRow("log") << QStringList{"watch", "D_W:1", "--csv", "/nowhere/l"} << "/nowhere/l";
    QTest::newRow("no direction") << QStringList{"recipe", "file"} << "expected pull or push";
    QTest::newRow("no recipe") << QStringList{"recipe", "push", "/nowhere/r"} << "/nowhere/r";
    QTest::newRow("recipe line") << QStringList{"recipe", "push", file("wrong.csv")}
                                 << "wrong.csv:2: address \"D_W:99999\"";
    QTest::newRow("recipe overlap")
        << QStringList{"recipe", "pull", "-", "D_W:1x3", "D_W:3"} << "overlap";
}

void TestOnline::badInput()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Result result = runHost(arguments);
    QCOMPARE(result.status, 2);
    QVERIFY2(result.err.contains(message), qPrintable(result.err));
    QVERIFY2(!result.err.contains("simulated controller"), "something was opened");
    QVERIFY(result.out.isEmpty());
}

void TestOnline::jsonForPrograms()
{
    const auto firstOf = [this](const QStringList &arguments) {
        const Result result =
            runHost(arguments + QStringList{"--json", "--port", m_controller->device()});
        return QJsonDocument::fromJson(result.out.toUtf8()).array().at(0).toObject();
    };
    const QJsonObject read = firstOf({"read", "level=2/D_W:110:float"});
    QCOMPARE(read["values"].toArray(), QJsonArray{1.5});
    QCOMPARE(read["address"].toString() + read["tag"].toString(), QString("2/D_W:110level"));
    QCOMPARE(read["number"].toInt() + read["station"].toInt(), 110 + 2);
    const QJsonObject written = firstOf({"write", "D_W:720:hex=0x1F"});
    QCOMPARE(written["values"].toArray(), QJsonArray{"0x001F"});
    QVERIFY(written["acknowledged"].toBool());
}

void TestOnline::recipeThereAndBack()
{
    const QString recipe = file("recipe.csv");
    const QStringList line{"--port", m_controller->device()};
    const QByteArray wanted =
        "address,values\nD_W:1000:float,2.25\nM_bit:40.6x4,1,0,1,1\nD_W:1300x3:int16,-1,2,3\n";
    save(recipe, wanted);
    const Result push = runHost(QStringList{"recipe", "push", recipe} + line);
    QVERIFY2(push.status == 0, qPrintable(push.out + push.err));
    QVERIFY(push.out.contains("3 of 3 addresses"));

    save(recipe, "D_W:1000:float\nM_bit:40.6x4\nD_W:1300x3:int16\n");
    QCOMPARE(runHost(QStringList{"recipe", "pull", recipe} + line).status, 0);
    QCOMPARE(read(recipe), QString(wanted));

    // Longer than a frame, and to standard output.
    const Result pull = runHost(QStringList{"recipe", "pull", "-", "D_W:1200x300"} + line);
    QCOMPARE(pull.status, 0);
    const QStringList values = pull.out.section('\n', 1, 1).split(',').mid(1);
    QCOMPARE(values.size(), 300);
    QCOMPARE(values.mid(100, 3), (QStringList{"65535", "2", "3"}));
}

void TestOnline::recipeThatDoesNotArrive()
{
    // D 101 is the controller's own: a sine that it has written over long before the last of the
    // other words is there.
    save(file("moving.csv"), "D_W:101,2000\nD_W:1000x300" + QByteArray(",7").repeated(300) + '\n');
    ControllerProcess moving(PLC_PROGRAM, {});
    const Result differs =
        runHost({"recipe", "push", file("moving.csv"), "--port", moving.device()});
    QCOMPARE(differs.status, 1);
    const QRegularExpression said(
        "^D_W:101: wrote 2000, the controller holds .*\n1 of 2 addresses");
    QVERIFY2(said.match(differs.out).hasMatch(), qPrintable(differs.out));

    ControllerProcess mute(PLC_PROGRAM, {"--faults", "loss=100%"});
    const Result failed = runHost({"recipe", "push", file("moving.csv"), "--port", mute.device(),
                                   "--timeout", "40", "--retries", "2"});
    QCOMPARE(failed.status, 1);
    QVERIFY2(failed.err.contains("0 of 301 values were written"), qPrintable(failed.err));
}

void TestOnline::traceTellsEveryFrame()
{
    const QString trace = file("trace.txt");
    QCOMPARE(
        runHost({"read", "D_W:100x2", "--port", m_controller->device(), "--trace", trace}).status,
        0);
    const QRegularExpression time("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z$");
    const QStringList lines = read(trace).split('\n');
    QCOMPARE(lines.size(), 3);  // the last is empty
    const QVector<QStringList> expected = {
        {"->", "02 72 61 43 38 30 30 30 30 30 34 37 32 03", "read 2 words of D from word 100"},
        {"<-", "06 72 30 31 30 30 30 32 30 30 46 35 04", "2 words: 1, 2"}};
    for (int i = 0; i < 2; ++i) {
        const QStringList fields = lines[i].split("  ");
        QVERIFY2(time.match(fields[0]).hasMatch(), qPrintable(fields[0]));
        QCOMPARE(fields.mid(1), expected[i]);
    }
}

void TestOnline::guards_data()
{
    QTest::addColumn<QStringList>("controllerLine");
    QTest::addColumn<QString>("hostLine");
    QTest::newRow("a pseudo-terminal") << QStringList{} << "--port";
    QTest::newRow("a device server") << QStringList{"--tcp", "0"} << "--tcp";
}

// Three words of different values are polled in turn, a request each: a reply that was taken for
// another's would show as a change. The line is so slow that no busy machine comes too late to see
// that a copy is early.
void TestOnline::guards()
{
    QFETCH(QStringList, controllerLine);
    QFETCH(QString, hostLine);
    ControllerProcess controller(
        PLC_PROGRAM, plcArguments(controllerLine + QStringList{"--baud", "4800", "--faults",
                                                               "late=5%:250ms,double=40%"}));
    const Result result = runHost({"watch", "D_W:100", "D_W:300", "D_W:500", "--block-limit", "1",
                                   "--csv", "-", "--for", "1.5", "--timeout", "200", "--quiet",
                                   "500", "--serial", "4800,8N1", hostLine, controller.device()});
    QCOMPARE(result.status, 0);
    QStringList values;
    const QStringList lines = result.out.split('\n', Qt::SkipEmptyParts).mid(1);
    for (const QString &line : lines)
        values.append(line.section(',', 2));
    values.sort();
    QCOMPARE(values, (QStringList{"D_W:100,1", "D_W:300,30", "D_W:500,50"}));
}

void TestOnline::lineGoesAndComesBack_data()
{
    QTest::addColumn<QStringList>("controllerLine");
    QTest::addColumn<QStringList>("hostLine");
    const QString link = file("tty");
    QTest::newRow("an adapter is unplugged")
        << QStringList{"--link", link} << QStringList{"--port", link};
    QTest::newRow("a device server restarts") << QStringList{"--tcp"} << QStringList{"--tcp"};
}

void TestOnline::lineGoesAndComesBack()
{
    QFETCH(QStringList, controllerLine);
    QFETCH(QStringList, hostLine);
    const bool tcp = hostLine == QStringList{"--tcp"};
    // D 100 counts: what arrives after the return is new.
    auto controller = std::make_unique<ControllerProcess>(
        PLC_PROGRAM, controllerLine + (tcp ? QStringList{"0"} : QStringList()));
    if (tcp) {
        hostLine += controller->device();
        controllerLine += controller->device().section(':', -1);
    }

    QProcess watching;
    watching.start(HOST_PROGRAM,
                   QStringList{"watch", "D_W:100", "--timeout", "100", "--csv", "-"} + hostLine);
    const auto seen = [&](const char *text) {
        QByteArray said;
        const auto hasCome = [&] {
            return (said += watching.readAllStandardError()).contains(text);
        };
        return QTest::qWaitFor(hasCome, Patience);
    };
    QVERIFY(QTest::qWaitFor([&] { return watching.bytesAvailable() > 60; }, Patience));
    controller.reset();
    QVERIFY(seen("lost "));
    QTest::qWait(500);  // long enough for several attempts
    QVERIFY(watching.readAllStandardError().isEmpty());
    watching.readAllStandardOutput();

    controller = std::make_unique<ControllerProcess>(PLC_PROGRAM, controllerLine);
    QVERIFY(seen("is back"));
    QVERIFY(QTest::qWaitFor([&] { return watching.bytesAvailable() > 60; }, Patience));
    ::kill(static_cast<pid_t>(watching.processId()), SIGINT);
    const Result result = collect(watching);
    QCOMPARE(result.status, 0);
    QVERIFY2(result.err.contains(" exchanges in "), qPrintable(result.err));
    QVERIFY2(!result.err.contains("lost"), qPrintable(result.err));
}

void TestOnline::liveTable()
{
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    QVERIFY(master >= 0 && ::grantpt(master) == 0 && ::unlockpt(master) == 0);
    QProcess watching;
    watching.setStandardOutputFile(QString(::ptsname(master)));
    watching.start(HOST_PROGRAM, {"watch", "level=D_W:110:float", "D_W:100", "--for", "0.7",
                                  "--port", m_controller->device()});
    const Result result = collect(watching);
    QByteArray screen;
    char bytes[4096];
    for (ssize_t count; (count = ::read(master, bytes, sizeof bytes)) > 0;)
        screen.append(bytes, int(count));
    ::close(master);
    QCOMPARE(result.status, 0);
    QVERIFY(result.err.contains(" exchanges in "));
    const QString text = QString::fromUtf8(screen);
    for (const char *pattern :
         {"name +address +value +trend +changes +age", "level +D_W:110 +1\\.5", "D_W:100 +1 ",
          "exchanges/s   0 retries", "\\x1b\\[\\?25h"})
        QVERIFY2(text.contains(QRegularExpression(QString(pattern))), qPrintable(text));
    const QStringList lines = text.split(QRegularExpression("\x1b[^A-Za-z]*[A-Za-z]|\r?\n"));
    for (const QString &line : lines)
        QVERIFY2(line.size() <= 80, qPrintable(line));
}

QTEST_GUILESS_MAIN(TestOnline)
#include "tst_online.moc"
