// tolvane-host plan: what one poll cycle will be, before any cable is plugged in.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/connection.h"
#include "host/failure.h"
#include "host/plan/picture.h"
#include "host/plan/plan_text.h"
#include "host/whole_file.h"

#include <QtCore/QJsonDocument>

#include <limits>

namespace host {

namespace {

constexpr int LongestTurnaroundMs = 10000;

}  // namespace

int planCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        QStringLiteral("plan"),
        QStringLiteral("What one poll cycle of these tags will be: the driver's requests, what "
                       "they cost on the\nline, and what is saved by reading tags together. "
                       "No line is opened."));
    commandLine.addPositionalArgument(
        QStringLiteral("tags"),
        QStringLiteral("A tag file (CSV: name,address,format), or addresses such as D_W:100x10."),
        QStringLiteral("TAGS..."));
    addConnectionOptions(commandLine, {QStringLiteral("serial"), QStringLiteral("station"),
                                       QStringLiteral("block-limit")});
    const QCommandLineOption turnaround(
        QStringLiteral("turnaround"),
        QStringLiteral("What the controller takes from a request to its reply (default: 0)."),
        QStringLiteral("ms"), QStringLiteral("0"));
    const QCommandLineOption suggest(
        QStringLiteral("suggest"),
        QStringLiteral("Also find the block limit with the shortest cycle."));
    const QCommandLineOption svg(
        QStringLiteral("svg"),
        QStringLiteral("Draw the cycle into this file; - draws it to standard output, "
                       "instead of the text."),
        QStringLiteral("file"));
    commandLine.addOptions({turnaround, suggest, svg});
    commandLine.addJsonOption("Print a JSON object.");
    commandLine.read(arguments, std::numeric_limits<int>::max());
    const QStringList given = commandLine.positionalArguments().mid(1);
    if (given.isEmpty())
        throw Failure(QStringLiteral("nothing to plan; expected a tag file or addresses"),
                      BadInput);

    const Driver driver = loadDriver(commandLine.driverPath());
    const Identity identity = identify(driver);
    Plan plan;
    const QString serial = commandLine.value(QStringLiteral("serial"));
    plan.lineText = serial.isEmpty() ? identity.serialLine : serial;
    plan.line.serial = serialOption(commandLine, identity);
    plan.line.turnaround = std::chrono::milliseconds(
        numberOption(commandLine, QStringLiteral("turnaround"), 0, LongestTurnaroundMs));
    plan.blockLimit = blockLimitOption(commandLine);
    plan.tags = parseTags(driver, identity, given, stationOption(commandLine));
    QVector<Point> points;
    for (const Tag &tag : std::as_const(plan.tags))
        points.append(tag.point);

    SessionSettings settings;
    settings.blockLimit = plan.blockLimit;
    Session session(driver, settings);
    plan.blocks = walkCycle(driver, session, identity, points);
    assignTags(plan.blocks, plan.tags);
    plan.costs = costsOf(plan.blocks, plan.line);
    plan.oneByOne = costsOneByOne(driver, session, identity, points, plan.line);
    if (commandLine.isSet(suggest))
        plan.best = bestBlockLimit(driver, session, identity, points, plan.line,
                                   {plan.blockLimit, plan.costs});

    if (commandLine.isSet(svg))
        replaceFile(commandLine.value(svg), drawPlan(driver, plan));
    if (commandLine.value(svg) == QLatin1String("-"))
        return AllRight;
    QTextStream out(stdout);
    if (commandLine.asJson())
        printJson(QJsonDocument(planToJson(driver, plan)));
    else
        printPlan(driver, plan, out);
    return AllRight;
}

}  // namespace host
