// tolvane-host demo: the tour against a simulated controller.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/line/serial_settings.h"
#include "host/output/failure.h"
#include "host/tour/tour.h"

namespace host {

namespace {

constexpr void (*Steps[])(Tour &) = {
    identifyDriver,   checkAddresses,  monitorPoints, pollForChanges, writeWords,  writeOneBit,
    writeSeveralBits, readOnCondition, writeRecipe,   readRecipe,     loseReplies, runAtFullSpeed,
};

int runTour(const QString &driverPath, QTextStream &out)
{
    const Driver driver = loadDriver(driverPath);
    const Identity identity = identify(driver);
    VirtualSettings settings;
    settings.line.baud = SerialSettings::parse(identity.serialLine).baudRate;
    VirtualLine line(settings);
    line.open();

    Report report(out);
    report.line(
        "A tour of the driver: what a panel does, against a simulated "
        "controller."_s);
    report.line(
        "-> is a request, <- its reply: the bytes, and what they say. "
        "\"ok\" is a result that was checked."_s);
    report.line();
    report.item("library"_s, driverPath);
    report.item("device"_s, "a simulated controller, in simulated time, at the pace of %1"_s.arg(
                                identity.serialLine));
    Tour tour(driver, identity, line, report);
    for (const auto step : Steps)
        step(tour);

    report.line();
    if (report.wrong() > 0) {
        report.line("%1 of %2 checks went WRONG."_s.arg(report.wrong()).arg(report.checks()));
        return SomethingFailed;
    }
    report.line("All %1 checks were right."_s.arg(report.checks()));
    return AllRight;
}

}  // namespace

int demoCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        "demo"_s,
        "A tour of the driver against a simulated controller, every step checked.\n"
        "Exit status 0 only if every result was right."_s);
    commandLine.read(arguments);
    QTextStream out(stdout);
    return runTour(commandLine.driverPath(), out);
}

}  // namespace host
