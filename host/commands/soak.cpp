// tolvane-host soak: random traffic against a controller that misbehaves, and a verdict.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/controller_process.h"
#include "host/failure.h"
#include "host/line/serial_line.h"
#include "host/neighbours.h"
#include "host/soak/report.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

#include <unistd.h>
#include <cstdio>
#include <limits>

namespace host {

namespace {

using std::chrono::milliseconds;

// Nothing but the controller's process takes time on an unpaced pseudo-terminal, so the waits can
// be short; they are what the faults cost. Before each request the host listens for the second copy
// of a doubled reply, which no pace of the line gives away here.
constexpr milliseconds DefaultTimeout(7);
constexpr milliseconds ListenFirst(1);
// What timers and the scheduling of processes may add to the time of a late reply.
constexpr milliseconds Lateness(5);
// The line carries bytes at once; the wire time that this rate means does not lengthen the waits.
const char LineSettingsText[] = "4000000,8,NONE,1";

const char DefaultFaults[] =
    "loss=2%,cut=1%,flip=2%,late=1%:9ms,double=2%,noise=1.8%,mute=0.2%:70ms";

qint64 wholeNumber(const CommandLine &commandLine, const char *option, qint64 lowest,
                   qint64 highest)
{
    const QString text = commandLine.value(QLatin1String(option));
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    if (!isNumber || number < lowest || number > highest)
        throw Failure(QStringLiteral("--%1 \"%2\": expected a number from %3 to %4")
                          .arg(QLatin1String(option), text, QString::number(lowest),
                               QString::number(highest)),
                      BadInput);
    return number;
}

// The quiet time must be longer than the latest reply is late: what came after it would be taken
// for the answer to the next request.
LoopSettings waitsFor(const QString &faults, milliseconds timeout)
{
    static const QRegularExpression late(QStringLiteral("late=[^:,]*:([0-9]{1,7})(m?s)"));
    const QRegularExpressionMatch match = late.match(faults);
    const int unit = match.captured(2) == QLatin1String("s") ? 1000 : 1;
    LoopSettings settings;
    settings.replyTimeout = timeout;
    settings.quietTime =
        std::max(timeout, milliseconds(match.captured(1).toLongLong() * unit) + Lateness - timeout);
    settings.listenFirst = ListenFirst;
    return settings;
}

// On a terminal, a line that is written over.
void showProgress(int sent, int requests)
{
    if (::isatty(STDERR_FILENO))
        std::fprintf(stderr, "\r%d of %d requests\x1b[K%s", sent, requests,
                     sent >= requests ? "\r\x1b[K" : "");
}

int judge(const SoakSetup &setup, int requests, bool asJson)
{
    const Driver driver = loadDriver(setup.driver);
    const Identity identity = identify(driver);
    const QTemporaryDir folder;
    if (!folder.isValid())
        throw Failure(QStringLiteral("no temporary folder: %1").arg(folder.errorString()));
    const QString image = folder.filePath(QStringLiteral("memory.csv"));
    const MemoryImage start = Soak::startImage(setup.seed);
    saveImage(image, start);
    ControllerProcess controller(
        setup.controller,
        {QStringLiteral("--baud"), QStringLiteral("0"), QStringLiteral("--still"),
         QStringLiteral("--image"), image, QStringLiteral("--save"), QStringLiteral("--faults"),
         setup.faults, QStringLiteral("--seed"), QString::number(setup.seed)});
    SerialLine line(controller.device(),
                    {SerialSettings::parse(QLatin1String(LineSettingsText)), true});
    if (!line.open())
        throw Failure(
            QStringLiteral("cannot open %1: %2").arg(controller.device(), line.errorText()));

    Soak soak(driver, identity, line, setup.loop, start, setup.seed);
    soak.run(requests, [requests](int sent) { showProgress(sent, requests); });
    controller.heal();
    soak.settle();
    const QString report = controller.finish();
    soak.judge(loadImage(image));

    QTextStream out(stdout);
    (asJson ? printSoakAsJson : printSoak)(out, setup, soak, report);
    return soak.findings().isEmpty() ? AllRight : SomethingFailed;
}

}  // namespace

int soakCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        QStringLiteral("soak"),
        QStringLiteral("Monitors, writes and reads at random through the driver, against a "
                       "controller whose replies\nget lost, late or damaged; then lets the line "
                       "heal and proves the end state.\nExit status 0 only if the controller's "
                       "memory and all that was read are right."));
    commandLine.addOptions({
        {QStringLiteral("exchanges"),
         QStringLiteral("Requests to send while the line is bad (default: 20000)."),
         QStringLiteral("n"), QStringLiteral("20000")},
        {QStringLiteral("faults"),
         QStringLiteral("Faults and their shares, as tolvane-plc takes them (default: %1).")
             .arg(QLatin1String(DefaultFaults)),
         QStringLiteral("list"), QLatin1String(DefaultFaults)},
        {QStringLiteral("seed"),
         QStringLiteral("Start of all dice, the controller's too (default: 1)."),
         QStringLiteral("n"), QStringLiteral("1")},
        {QStringLiteral("timeout"),
         QStringLiteral("Wait so long for a reply (default: %1).").arg(DefaultTimeout.count()),
         QStringLiteral("ms"), QString::number(DefaultTimeout.count())},
        {QStringLiteral("controller"),
         QStringLiteral("The controller program to start, with tolvane-plc's options (default: "
                        "the tolvane-plc beside this program)."),
         QStringLiteral("path")},
        {QStringLiteral("json"), QStringLiteral("Print the result as JSON.")},
    });
    commandLine.read(arguments);

    const int requests = int(wholeNumber(commandLine, "exchanges", 1, 100000000));
    const milliseconds timeout(wholeNumber(commandLine, "timeout", 1, 60000));
    SoakSetup setup;
    setup.seed = quint32(wholeNumber(commandLine, "seed", 0, std::numeric_limits<int>::max()));
    setup.faults = commandLine.value(QStringLiteral("faults"));
    setup.loop = waitsFor(setup.faults, timeout);
    setup.driver = commandLine.driverPath();
    const QString controller = commandLine.value(QStringLiteral("controller"));
    setup.controller = controller.isEmpty() ? findController() : controller;
    if (!QFileInfo(setup.controller).isExecutable())
        throw Failure(
            QStringLiteral("--controller \"%1\": expected a program").arg(setup.controller),
            BadInput);
    return judge(setup, requests, commandLine.isSet(QStringLiteral("json")));
}

}  // namespace host
