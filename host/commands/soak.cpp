// tolvane-host soak: random traffic on a line with faults, and a verdict.
#include "host/commands/commands.h"
#include "host/exchange/connection_options.h"
#include "host/output/failure.h"
#include "host/soak/report.h"

#include "plc/report.h"

#include <limits>

namespace host {

namespace {

constexpr int LostRequests = 10000;  // of a million
constexpr int Standstills = 20000;
constexpr int MostExchanges = 1000000000;

}  // namespace

int soakCommand(const CommandLine &commandLine)
{
    const int requests = numberOption(commandLine, "exchanges"_s, 1, MostExchanges);
    SoakSetup setup;
    setup.driver = commandLine.driverPath();
    setup.seed = quint32(numberOption(commandLine, "seed"_s, 0, std::numeric_limits<int>::max()));
    setup.faults = commandLine.value("faults"_s);
    const Driver driver = loadDriver(setup.driver);
    const LinePace pace = paceOptions(commandLine, driver.identity);
    setup.line = "a simulated controller, in simulated time, "_s +
                 (pace.none ? "without a pace"_s : "%1 baud"_s.arg(pace.settings.baudRate));

    VirtualSettings settings;
    const QString wrong = plc::FaultPlan::parse(setup.faults, &settings.faults);
    if (!wrong.isEmpty())
        throw Failure("--faults: %1"_s.arg(wrong), BadInput);
    settings.line.baud = pace.none ? 0 : pace.settings.baudRate;
    settings.lostRequests = LostRequests;
    settings.standstills = Standstills;
    settings.seed = setup.seed;
    settings.moving = false;
    VirtualLine line(settings);
    line.open();

    Soak soak(driver, line, loopOptions(commandLine), setup.seed);
    soak.run(requests);
    soak.judge();
    QTextStream out(stdout);
    (commandLine.asJson() ? printSoakAsJson : printSoak)(
        out, setup, soak,
        plc::countsText(line.controller().counts(), line.faults()) +
            "\nunheard: total=%1"_s.arg(line.requestsLost()));
    return soak.findings().isEmpty() ? AllRight : SomethingFailed;
}

}  // namespace host
