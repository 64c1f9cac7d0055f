// tolvane-host soak: random traffic on a line with faults, and a verdict.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/exchange/connection_options.h"
#include "host/output/failure.h"
#include "host/soak/report.h"

#include "plc/report.h"

#include <limits>

namespace host {

namespace {

const char DefaultFaults[] =
    "loss=2%,cut=1%,flip=2%,late=1%:510ms..1500ms,double=2%,noise=1.8%,mute=0.2%:3s";
constexpr int LostRequests = 10000;  // of a million
constexpr int MostExchanges = 1000000000;

int soak(const CommandLine &commandLine)
{
    const int requests = numberOption(commandLine, "exchanges"_s, 1, MostExchanges);
    SoakSetup setup;
    setup.driver = commandLine.driverPath();
    setup.seed = quint32(numberOption(commandLine, "seed"_s, 0, std::numeric_limits<int>::max()));
    setup.faults = commandLine.value("faults"_s);
    const Driver driver = loadDriver(setup.driver);
    const Identity identity = identify(driver);
    const LinePace pace = paceOptions(commandLine, identity);
    setup.line = "a simulated controller, in simulated time, "_s +
                 (pace.none ? "without a pace"_s : "%1 baud"_s.arg(pace.settings.baudRate));

    VirtualSettings settings;
    const QString wrong = plc::FaultPlan::parse(setup.faults, &settings.faults);
    if (!wrong.isEmpty())
        throw Failure("--faults: %1"_s.arg(wrong), BadInput);
    settings.line.baud = pace.none ? 0 : pace.settings.baudRate;
    settings.lostRequests = LostRequests;
    settings.seed = setup.seed;
    settings.moving = false;
    VirtualLine line(settings);
    line.open();

    Soak soak(driver, identity, line, loopOptions(commandLine), setup.seed);
    soak.run(requests);
    soak.judge();
    QTextStream out(stdout);
    (commandLine.asJson() ? printSoakAsJson : printSoak)(
        out, setup, soak,
        plc::countsText(line.controller().counts(), line.faults()) +
            "\nunheard: total=%1"_s.arg(line.requestsLost()));
    return soak.findings().isEmpty() ? AllRight : SomethingFailed;
}

}  // namespace

int soakCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        "soak"_s,
        "Monitors, writes and reads at random through the driver, on a line whose replies get "
        "lost,\nlate or damaged; then lets the line heal and proves the end state. In simulated "
        "time, so it\ntakes as long as its computing and comes out the same for the same seed.\n"
        "Exit status 0 only if the controller's memory and all that was read are right."_s);
    addConnectionOptions(commandLine, {"serial"_s, "pace"_s, "timeout"_s, "quiet"_s, "listen"_s});
    commandLine.addOptions({
        {"exchanges"_s, "Requests to send while the line is bad (default: 100000)."_s, "n"_s,
         "100000"_s},
        {"faults"_s,
         "Faults of replies and their shares, as tolvane-plc takes them (default: "
         "%1). One of 100 requests gets lost besides."_s.arg(QLatin1String(DefaultFaults)),
         "list"_s, QLatin1String(DefaultFaults)},
        {"seed"_s, "Start of all dice (default: 1)."_s, "n"_s, "1"_s},
    });
    commandLine.addJsonOption("Print the result as JSON.");
    commandLine.read(arguments);
    return soak(commandLine);
}

}  // namespace host
