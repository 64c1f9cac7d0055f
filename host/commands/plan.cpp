// tolvane-host plan: what one poll cycle will be, before any cable is plugged in.
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/output/output_file.h"
#include "host/plan/picture.h"
#include "host/plan/text.h"

#include <QtCore/QJsonDocument>

namespace host {

namespace {

constexpr int LongestTurnaroundMs = 10000;
constexpr FileKind Picture{"picture of a plan", "<svg .*poll cycle"};

}  // namespace

int planCommand(const CommandLine &commandLine)
{
    const QString svg = commandLine.value("svg"_s);
    if (!svg.isEmpty())
        refuseOtherFile(svg, Picture);
    Driver driver = loadDriver(commandLine.driverPath());
    driver.stationNo = stationOption(commandLine);
    PlannedLine line;
    const QString serial = commandLine.value("serial"_s);
    line.text = serial.isEmpty() ? driver.identity.serialLine : serial;
    line.serial = serialOption(commandLine, driver.identity);
    line.turnaround = std::chrono::milliseconds(
        numberOption(commandLine, "turnaround"_s, 0, LongestTurnaroundMs));
    const QVector<Tag> tags = parseTags(driver, commandLine.given());
    const Plan plan = planCycle(driver, tags, line, blockLimitOption(commandLine),
                                commandLine.isSet("suggest"_s));

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
