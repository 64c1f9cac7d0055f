// The commands that talk to a controller, as processes on real pseudo-terminals and sockets: what
// they print, how they end, and a line that goes and comes back.
#include "host/controller_process.h"
#include "host/failure.h"
#include "host/recipe_transfer.h"
#include "tests/host/program.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

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

const char *const Ready = "";       // a good controller, answering at once
const char *const NoLine = "none";  // nothing is named
const char *const Moving = "--baud 115200";
const char *const Mute = "--faults loss=100%";

}  // namespace

class TestOnline : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void command_data();
    void command();
    void recipeThereAndBack();
    void incompleteRecipeReadIsNone();
    void guards();
    void lineGoesAndComesBack_data();
    void lineGoesAndComesBack();
    void liveTable();

private:
    QString file(const char *name) const { return m_folder.filePath(QString(name)); }
    void save(const char *name, const QByteArray &text) const;
    QStringList plcArguments(const QStringList &more = {}) const
    {
        return QStringList{"--still", "--image", file("memory.csv")} + more;
    }

    QTemporaryDir m_folder;
    std::unique_ptr<ControllerProcess> m_controller;
};

void TestOnline::save(const char *name, const QByteArray &text) const
{
    QFile out(file(name));
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write(text);
}

void TestOnline::initTestCase()
{
    qputenv("TZ", "IST-5:30");
    save("memory.csv", Memory);
    save("tags.csv", "name,address,format\nlevel,D_W:110,float\nlamp,M_bit:20.5,\n");
    save("wrong.csv", "D_W:600,1\nD_W:99999,1\n");
    // D 101 is a moving controller's own: a sine that it has written over long before the last of
    // the other words is there.
    save("moving.csv", "D_W:101,2000\nD_W:1000x300" + QByteArray(",7").repeated(300) + '\n');
    m_controller = std::make_unique<ControllerProcess>(PLC_PROGRAM, plcArguments());
}

void TestOnline::command_data()
{
    QTest::addColumn<QString>("arguments");   // "@" stands for the folder
    QTest::addColumn<QString>("controller");  // its arguments, or one of the above
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("out");  // patterns
    QTest::addColumn<QString>("err");
    const auto row = [](const char *arguments, const char *controller, int status, const char *out,
                        const char *err = "^$") {
        QTest::newRow(arguments) << arguments << controller << status << out << err;
    };
    const auto refused = [&](const char *arguments, const char *err) {
        row(arguments, NoLine, BadInput, "^$", err);
    };
    row("read D_W:100x3", Ready, 0, "^D_W:100x3  1, 2, 65535\n$");
    row("read @tags.csv D_W:102:int16", Ready, 0,
        "^level +D_W:110 +1\\.5\nlamp +M_bit:20\\.5 +1\nD_W:102:int16 +-1\n$");
    row("read D_W:100 D_W:900", Mute, 1, "^$",
        "D_W:100: no reply to 2 requests of 60 ms each\n.*D_W:900: no reply");
    row("read D_W:300", "--tcp 0", 0, "  30\n");
    row("read M_bit:20.5 --simulate", NoLine, 0, "^M_bit:20\\.5  0\n$", "a simulated controller");
    for (const char *command : {"read D_W:1", "write D_W:1=2", "recipe push @moving.csv"})
        row(qPrintable(QString("%1 --port /nowhere/tty --json").arg(command)), NoLine, 1,
            "\"address\": ?\"D_W:1[^$]*\"reason\": ?\"cannot open /nowhere/tty", "/nowhere/tty");
    row("read level=2/D_W:110:float --json", Ready, 0,
        "\"address\": \"2/D_W:110\",\\s*\"number\": 110,\\s*\"quality\": \"good\",\\s*\"station\": "
        "2,"
        "\\s*\"tag\": \"level\",\\s*\"time\": \"\\S+Z\",\\s*\"values\": \\[\\s*1\\.5\\s*\\]");
    row("write D_W:720x2:hex=0x1F,0 --json", Ready, 0,
        "\"acknowledged\": true,\\s*\"address\": \"D_W:720\",\\s*\"blocks\": [^$]*\"count\": "
        "2,[^$]*"
        "\"values\": \\[\\s*\"0x001F\",\\s*\"0x0000\"");
    row("read D_W:100 D_W:300 --trace /dev/full", Ready, 1, "^D_W:100  1\nD_W:300  30\n$",
        "^tolvane-host: cannot write .*No space left on device; the trace ends here\n$");
    row("write D_W:700x3=7,8,9 heat=D_W:710:float=-2.5 M_bit:30.3x2=1,1 TX:5=1", Ready, 0,
        "^D_W:700x3 .*= 7, 8, 9  acknowledged\nheat +D_W:710 = -2\\.5  acknowledged\n"
        "M_bit:30\\.3x2 .*= 1, 1  acknowledged\nTX:5 .*= 1  acknowledged\n$");
    row("read D_W:699x5 D_W:710:float M_W:30:hex TX:4x3", Ready, 0,  // and nothing beside it
        "D_W:699x5 +0, 7, 8, 9, 0\n.*-2\\.5\n.*0x0018\n.*0, 1, 0\n");
    row("write D_W:700x6=1,2,3,4,5,6 --block-limit 4", "--faults loss=50% --seed 3", 1,
        "FAILED: D_W:700x4 acknowledged; D_W:704x2: no reply to 2 requests of 60 ms each\n$");
    row("watch D_W:300 level=D_W:110:float --for 0.3", Ready, 0,
        "^\\S+T\\S+Z  level  D_W:110  1\\.5\n\\S+  D_W:300  30\n$",
        "exchanges in 0\\.[34] s .*, 0 errors\n[1-9]\\S* % of the line's");
    row("watch two=D_W:100x2 --for 0.3 --csv -", Ready, 0,
        "^time,name,address,value,quality,reason\n[^,]*,two\\[0\\],D_W:100,1,good,\n"
        "[^,]*,two\\[1\\],D_W:101,2,good,\n$",
        "");
    row("watch a=D_W:100 --for 0.3 --csv - --every 100 --local", Ready, 0,
        "^time,a,a quality\n(\\S+T\\S+\\+05:30,1,good\n){3}$", "");
    row("watch a=D_W:100 b=D_W:100 --for 0.5 --json --stats", Mute, 1,
        "^\\{\"address\":\"D_W:100\",\"number\":100,\"quality\":\"bad\",\"reason\":\"no reply to 2 "
        "requests of 60 ms each\",\"station\":1,\"tag\":\"a\",\"time\":\"\\S+Z\",\"value\":null\\}"
        "\n.*\"tag\":\"b\".*\n\\{\"statistics\":.*\"no-reply\":.*\n$",
        "failures: no-reply \\d+\n.*no good value at the end; no reply to 2 .* each: a, b\n");
    row("watch D_W:100 --csv /dev/full --for 9", Ready, 1, "^$",
        "^tolvane-host: cannot write \"/dev/full\": No space left on device\n$");
    row("recipe pull - D_W:100x2 --json", Ready, 0,
        "^\\{\"address\":\"D_W:100\",.*\\[1,2\\]\\}\n$");
    row("recipe push @moving.csv", Moving, 1,
        "^D_W:101: wrote 2000, the controller holds .*\n1 of 2 addresses");
    row("recipe push @moving.csv", Mute, 1, "^$",
        "0 of 301 values were written, then the driver gave up D_W:101: no reply");

    refused("read", "expected ADDRESS");
    refused("read D_W:99999", "outside D_W, which reaches from 0 to 32767");
    refused("read D_W:1", "no line named");
    refused("read D_W:1 --simulate --tcp a:1", "expected --port, --tcp or --simulate");
    refused("read D_W:1 --tcp box", "\"box\": expected HOST:PORT");
    refused("read D_W:1 --trace /nowhere/t", "/nowhere/t");
    refused("write D_W:1", "expected ADDRESS=VALUE");
    refused("write D_W:1=1", "no line named");
    refused("write D_W:1=70000", "70000");
    refused("watch D_W:1 --for ever", "\"ever\": expected seconds");
    refused("watch D_W:1 --json --csv -", "standard output");
    refused("recipe file", "expected pull or push");
    refused("recipe push /nowhere/r", "/nowhere/r");
    refused("recipe push @wrong.csv", "wrong.csv:2: address \"D_W:99999\"");
    refused("recipe pull - D_W:1x3 D_W:3", "overlap");
}

void TestOnline::command()
{
    QFETCH(QString, arguments);
    QFETCH(QString, controller);
    QFETCH(QString, out);
    QFETCH(QString, err);
    QStringList all = arguments.replace('@', m_folder.path() + '/').split(' ');
    const QStringList its = controller.split(' ');
    std::unique_ptr<ControllerProcess> own;
    if (controller != Ready && controller != NoLine)
        own = std::make_unique<ControllerProcess>(PLC_PROGRAM,
                                                  controller == Moving ? its : plcArguments(its));
    if (controller != NoLine)
        all += {controller.contains("--tcp") ? "--tcp" : "--port",
                own ? own->device() : m_controller->device()};
    const Result result =
        runProgram(HOST_PROGRAM, all + QStringList{"--timeout", "60", "--retries", "2"});
    QFETCH(int, status);
    QVERIFY2(result.status == status, qPrintable(result.err));
    QVERIFY2(hasMatch(result.out, out), qPrintable(result.out));
    QVERIFY2(hasMatch(result.err, err), qPrintable(result.err));
}

void TestOnline::recipeThereAndBack()
{
    const auto recipe = [this](const QStringList &arguments) {
        return runProgram(HOST_PROGRAM, QStringList{"recipe"} + arguments +
                                            QStringList{"--port", m_controller->device()});
    };
    const QByteArray wanted =
        "address,values\nD_W:1000:float,2.25\nM_bit:40.6x4,1,0,1,1\nD_W:1300x3:int16,-1,2,3\n";
    save("recipe.csv", wanted);
    QVERIFY(recipe({"push", file("recipe.csv")}).out.contains("3 of 3 addresses"));
    save("recipe.csv", "D_W:1000:float\nM_bit:40.6x4\nD_W:1300x3:int16\n");
    QCOMPARE(recipe({"pull", file("recipe.csv")}).status, 0);
    QFile pulled(file("recipe.csv"));
    QVERIFY(pulled.open(QIODevice::ReadOnly));
    QCOMPARE(pulled.readAll(), wanted);

    // Longer than a frame, and to standard output.
    const QStringList values =
        recipe({"pull", "-", "D_W:1200x300"}).out.section('\n', 1, 1).split(',').mid(1);
    QCOMPARE(values.size(), 300);
    QCOMPARE(values.mid(100, 3), (QStringList{"65535", "2", "3"}));
}

void TestOnline::incompleteRecipeReadIsNone()
{
    QCommandLineParser options;
    options.addOption({"driver", "", "path"});
    addConnectionOptions(options);
    QVERIFY(options.parse({"", "--driver", DRIVER_LIBRARY, "--port", m_controller->device()}));
    Connection connection(options);
    RecipeTransfer transfer(
        connection, parseTags(connection.driver(), connection.identity(), {"D_W:0x300"}, 1));
    connection.open(Purpose::Reading);
    // As if the driver told of the first block's words only.
    transfer.progress = [&](int, int, int) { connection.session().recipeUnitRead = nullptr; };
    QVERIFY_EXCEPTION_THROWN(transfer.read(), Failure);
}

// Three words of different values are polled in turn, a request each: a reply that was taken for
// another's would show as a change. The line is so slow that no busy machine comes too late to see
// that a copy is early.
void TestOnline::guards()
{
    for (const QStringList &controllerLine : {QStringList(), QStringList{"--tcp", "0"}}) {
        const QString hostLine = controllerLine.isEmpty() ? "--port" : "--tcp";
        ControllerProcess controller(
            PLC_PROGRAM, plcArguments(controllerLine + QStringList{"--baud", "4800", "--faults",
                                                                   "late=5%:250ms,double=40%"}));
        const Result result = runProgram(
            HOST_PROGRAM, {"watch", "D_W:100", "D_W:300", "D_W:500", "--block-limit", "1", "--csv",
                           "-", "--for", "1.5", "--timeout", "200", "--quiet", "500", "--serial",
                           "4800,8N1", hostLine, controller.device()});
        // A machine that is busy enough may show fewer of them, but no others.
        QSet<QString> values;
        const QStringList lines = result.out.split('\n', Qt::SkipEmptyParts).mid(1);
        for (const QString &line : lines)
            values.insert(line.section(',', 2, 3));
        values.subtract({"D_W:100,", "D_W:300,", "D_W:500,"});
        QVERIFY2(!values.isEmpty(), qPrintable(result.err));
        values.subtract({"D_W:100,1", "D_W:300,30", "D_W:500,50"});
        QCOMPARE(values, QSet<QString>());
    }
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
    watching.start(HOST_PROGRAM, QStringList{"watch", "D_W:100", "--json"} + hostLine);
    QByteArray out;
    QByteArray err;
    const auto seen = [&](const QByteArray &text) {
        return QTest::qWaitFor(
            [&] {
                out += watching.readAllStandardOutput();
                err += watching.readAllStandardError();
                return (out + err).contains(text);
            },
            Patience);
    };
    QVERIFY(seen("good"));
    controller.reset();
    QVERIFY(seen("\"reason\":\"line lost\""));
    controller = std::make_unique<ControllerProcess>(PLC_PROGRAM, controllerLine);
    QVERIFY(seen("is back"));
    out.clear();
    QVERIFY(seen("good"));
    ::kill(static_cast<pid_t>(watching.processId()), SIGINT);
    QVERIFY(watching.waitForFinished(Patience) && watching.exitStatus() == QProcess::NormalExit);
    QCOMPARE(watching.exitCode(), 0);
    err += watching.readAllStandardError();
    QVERIFY2(err.contains(" exchanges in "), err.constData());
    QCOMPARE(err.count("lost"), 1);
}

void TestOnline::liveTable()
{
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    QVERIFY(master >= 0 && ::grantpt(master) == 0 && ::unlockpt(master) == 0);
    QProcess watching;
    watching.setStandardOutputFile(QString(::ptsname(master)));
    watching.start(HOST_PROGRAM, {"watch", "level=D_W:110:float", "--for", "0.6", "--port",
                                  m_controller->device()});
    QVERIFY(watching.waitForFinished(Patience));
    char bytes[8192];
    const ssize_t count = ::read(master, bytes, sizeof bytes);
    ::close(master);
    const QString text = QString::fromUtf8(bytes, int(count));
    // The second drawing lies over the first, and the cursor is back.
    QVERIFY2(hasMatch(text,
                      "\x1b\\[3Aname +address +value .*\n.*level +D_W:110 +1\\.5 .*\n.*"
                      "exchanges/s   0 retries.*\n.*\x1b\\[\\?25h"),
             qPrintable(text));
}

QTEST_GUILESS_MAIN(TestOnline)
#include "tst_online.moc"
