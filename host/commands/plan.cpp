// tolvane-host plan: what one poll cycle will be, before any cable is plugged in.
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/output/whole_file.h"
#include "host/plan/picture.h"
#include "host/plan/plan_text.h"

#include <QtCore/QJsonDocument>

namespace host {

namespace {

constexpr int LongestTurnaroundMs = 10000;

}  // namespace

int planCommand(const CommandLine &commandLine)
{
    const Driver driver = loadDriver(commandLine.driverPath());
    const Identity identity = identify(driver);
    Plan plan;
    const QString serial = commandLine.value("serial"_s);
    plan.lineText = serial.isEmpty() ? identity.serialLine : serial;
    plan.line.serial = serialOption(commandLine, identity);
    plan.line.turnaround = std::chrono::milliseconds(
        numberOption(commandLine, "turnaround"_s, 0, LongestTurnaroundMs));
    plan.blockLimit = blockLimitOption(commandLine);
    plan.tags = parseTags(driver, identity, commandLine.given(), stationOption(commandLine));
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
    if (commandLine.isSet("suggest"_s))
        plan.best = bestBlockLimit(driver, session, identity, points, plan.line,
                                   {plan.blockLimit, plan.costs});

    const QString svg = commandLine.value("svg"_s);
    if (!svg.isEmpty())
        replaceFile(svg, drawPlan(driver, plan));
    if (svg == "-"_s)
        return AllRight;
    QTextStream out(stdout);
    if (commandLine.asJson())
        printJson(QJsonDocument(planToJson(driver, plan)));
    else
        printPlan(driver, plan, out);
    return AllRight;
}

}  // namespace host
