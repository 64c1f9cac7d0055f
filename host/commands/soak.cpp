// tolvane-host soak: random traffic on a line with faults, and a verdict.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/exchange/connection_options.h"
#include "host/line/serial_line.h"
#include "host/line/tcp_line.h"
#include "host/line/virtual_line.h"
#include "host/output/failure.h"
#include "host/output/interrupt.h"
#include "host/soak/report.h"

#include "plc/report.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include <unistd.h>

namespace host {

namespace {

const char DefaultFaults[] =
    "loss=2%,cut=1%,flip=2%,late=1%:510ms..1500ms,double=2%,noise=1.8%,mute=0.2%:3s";
constexpr int LostRequests = 10000;  // of a million
constexpr int Standstills = 20000;

qint64 wholeNumber(const CommandLine &commandLine, const char *option, qint64 lowest,
                   qint64 highest)
{
    const QString text = commandLine.value(QLatin1String(option));
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    if (!isNumber || number < lowest || number > highest)
        throw Failure(
            "--%1 \"%2\": expected a number from %3 to %4"_s.arg(
                QLatin1String(option), text, QString::number(lowest), QString::number(highest)),
            BadInput);
    return number;
}

// On a terminal, a line that is written over.
void showProgress(qint64 sent, qint64 requests)
{
    if (::isatty(STDERR_FILENO))
        std::fprintf(stderr, "\r%lld of %lld requests\x1b[K%s", std::min(sent, requests), requests,
                     sent >= requests ? "\r\x1b[K" : "");
}

struct SoakRun
{
    SoakSetup setup;
    qint64 requests = 0;
    LinePace pace;
    plc::FaultPlan faults;  // of the simulated controller
    QString device;         // one of these two, or neither: simulated
    QString server;
    bool asJson = false;
};

int conclude(const SoakRun &run, const Soak &soak, const QString &controllerReport)
{
    QTextStream out(stdout);
    (run.asJson ? printSoakAsJson : printSoak)(out, run.setup, soak, controllerReport);
    return soak.findings().isEmpty() ? AllRight : SomethingFailed;
}

int soakSimulated(const SoakRun &run, const Driver &driver, const Identity &identity)
{
    VirtualSettings settings;
    settings.line.baud = run.pace.none ? 0 : run.pace.settings.baudRate;
    settings.faults = run.faults;
    settings.lostRequests = LostRequests;
    settings.standstills = Standstills;
    settings.seed = run.setup.seed;
    settings.moving = false;
    VirtualLine line(settings);
    const MemoryImage start = Soak::startImage(run.setup.seed);
    storeImage(start, line.memory());
    line.open();

    Soak soak(driver, identity, line, run.setup.loop, start, run.setup.seed);
    soak.run(run.requests, [&run](qint64 sent) { showProgress(sent, run.requests); });
    line.heal();
    soak.settle();
    soak.judge(imageOf(line.memory()));
    return conclude(run, soak,
                    plc::countsText(line.controller().counts(), line.faults()) +
                        "\nunheard: total=%1"_s.arg(line.requestsLost()));
}

int soakReal(const SoakRun &run, const Driver &driver, const Identity &identity, Line &line)
{
    if (!line.open())
        throw Failure("cannot open %1: %2"_s.arg(run.setup.line, line.errorText()));
    catchInterrupts();
    const QVector<Point> places = Soak::places();
    MemoryImage start;
    {
        Session session(driver, SessionSettings());
        start = readImage(driver, session, line, run.setup.loop, places);
    }
    Soak soak(driver, identity, line, run.setup.loop, start, run.setup.seed);
    soak.run(run.requests, [&run](qint64 sent) { showProgress(sent, run.requests); });
    soak.settle();
    soak.judge(readImage(driver, soak.session(), line, run.setup.loop, places));
    return conclude(run, soak, QString());
}

SoakRun readOptions(const CommandLine &commandLine, const Identity &identity)
{
    SoakRun run;
    const auto given = [&](const char *option) { return commandLine.value(QLatin1String(option)); };
    run.requests = wholeNumber(commandLine, "exchanges", 1, 1000000000);
    run.setup.seed = quint32(wholeNumber(commandLine, "seed", 0, std::numeric_limits<int>::max()));
    run.setup.loop = loopOptions(commandLine);
    run.pace = paceOptions(commandLine, identity);
    run.device = given("port");
    run.server = given("tcp");
    run.asJson = commandLine.asJson();
    run.setup.faults = given("faults");
    const QString wrong = plc::FaultPlan::parse(run.setup.faults, &run.faults);
    if (!wrong.isEmpty())
        throw Failure("--faults: %1"_s.arg(wrong), BadInput);

    const bool isReal = !run.device.isEmpty() || !run.server.isEmpty();
    if (isReal && !commandLine.isSet("overwrite"_s))
        throw Failure(
            "it would write at random to D 50-249, M 8-23 and TX 16-135 "
            "of that controller; expected --overwrite if it may"_s,
            BadInput);
    if (!run.device.isEmpty() && !run.server.isEmpty())
        throw Failure("more than one line; expected --port or --tcp"_s, BadInput);
    if (isReal && commandLine.isSet("faults"_s))
        throw Failure(
            "--faults: a real line has its own; expected neither --port "
            "nor --tcp beside it"_s,
            BadInput);
    if (isReal)
        run.setup.faults = "the line's own"_s;
    run.setup.line = isReal ? run.device + run.server
                            : "a simulated controller, in simulated time, "_s +
                                  (run.pace.none ? "without a pace"_s
                                                 : "%1 baud"_s.arg(run.pace.settings.baudRate));
    return run;
}

}  // namespace

int soakCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        "soak"_s,
        "Monitors, writes and reads at random through the driver, on a line whose "
        "replies get lost,\nlate or damaged; then lets the line heal and proves the "
        "end state. In simulated time, so it\ntakes as long as its computing and "
        "comes out the same for the same seed; with --port or --tcp a real line, "
        "in real time.\nExit status 0 only if the controller's memory and all that was "
        "read are right."_s);
    addConnectionOptions(
        commandLine, {"port"_s, "tcp"_s, "serial"_s, "pace"_s, "timeout"_s, "quiet"_s, "listen"_s});
    commandLine.addOptions({
        {"exchanges"_s, "Requests to send while the line is bad (default: 100000)."_s, "n"_s,
         "100000"_s},
        {"faults"_s,
         "Faults of replies and their shares, as tolvane-plc takes them (default: "
         "%1). One of 100 requests gets lost besides, and at two the host stands still, for up to 50 ms."_s
             .arg(QLatin1String(DefaultFaults)),
         "list"_s, QLatin1String(DefaultFaults)},
        {"seed"_s, "Start of all dice (default: 1)."_s, "n"_s, "1"_s},
        {"overwrite"_s, "Allow random values in that controller: D 50-249, M 8-23, TX 16-135."_s},
    });
    commandLine.addJsonOption("Print the result as JSON.");
    commandLine.read(arguments);

    const Driver driver = loadDriver(commandLine.driverPath());
    const Identity identity = identify(driver);
    SoakRun run = readOptions(commandLine, identity);
    run.setup.driver = commandLine.driverPath();
    if (!run.server.isEmpty()) {
        TcpLine line(run.server, run.pace);
        return soakReal(run, driver, identity, line);
    }
    if (!run.device.isEmpty()) {
        SerialLine line(run.device, run.pace);
        return soakReal(run, driver, identity, line);
    }
    return soakSimulated(run, driver, identity);
}

}  // namespace host
