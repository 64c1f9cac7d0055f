// tolvane-host demo: the tour against a simulated controller.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/demo/tour.h"
#include "host/failure.h"
#include "host/line/serial_settings.h"

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
        QStringLiteral("A tour of the driver: what a panel does, against a simulated "
                       "controller."));
    report.line(
        QStringLiteral("-> is a request, <- its reply: the bytes, and what they say. "
                       "\"ok\" is a result that was checked."));
    report.line();
    report.item(QStringLiteral("library"), driverPath);
    report.item(QStringLiteral("device"),
                QStringLiteral("a simulated controller, in simulated time, at the pace of %1")
                    .arg(identity.serialLine));
    Tour tour(driver, identity, line, report);
    for (const auto step : Steps)
        step(tour);

    report.line();
    if (report.wrong() > 0) {
        report.line(
            QStringLiteral("%1 of %2 checks went WRONG.").arg(report.wrong()).arg(report.checks()));
        return SomethingFailed;
    }
    report.line(QStringLiteral("All %1 checks were right.").arg(report.checks()));
    return AllRight;
}

}  // namespace

int demoCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        QStringLiteral("demo"),
        QStringLiteral("A tour of the driver against a simulated controller, every step checked.\n"
                       "Exit status 0 only if every result was right."));
    commandLine.read(arguments);
    QTextStream out(stdout);
    return runTour(commandLine.driverPath(), out);
}

}  // namespace host
