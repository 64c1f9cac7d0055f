// tolvane-host plan: what one poll cycle will be, before any cable is plugged in.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/output/whole_file.h"
#include "host/plan/picture.h"
#include "host/plan/text.h"

#include <QtCore/QJsonDocument>

#include <limits>

namespace host {

namespace {

constexpr int LongestTurnaroundMs = 10000;

}  // namespace

int planCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        "plan"_s,
        "What one poll cycle of these tags will be: the driver's requests, what "
        "they cost on the\nline, and what is saved by reading tags together. "
        "No line is opened."_s);
    commandLine.addPositionalArgument(
        "tags"_s, "A tag file (CSV: name,address,format), or addresses such as D_W:100x10."_s,
        "TAGS..."_s);
    addConnectionOptions(commandLine, {"serial"_s, "station"_s, "block-limit"_s});
    const QCommandLineOption turnaround(
        "turnaround"_s, "What the controller takes from a request to its reply (default: 0)."_s,
        "ms"_s, "0"_s);
    const QCommandLineOption suggest("suggest"_s,
                                     "Also find the block limit with the shortest cycle."_s);
    const QCommandLineOption svg("svg"_s,
                                 "Draw the cycle into this file; - draws it to standard output, "
                                 "instead of the text."_s,
                                 "file"_s);
    commandLine.addOptions({turnaround, suggest, svg});
    commandLine.addJsonOption("Print a JSON object.");
    commandLine.read(arguments, std::numeric_limits<int>::max());
    const QStringList given = commandLine.positionalArguments().mid(1);
    if (given.isEmpty())
        throw Failure("nothing to plan; expected a tag file or addresses"_s, BadInput);

    const Driver driver = loadDriver(commandLine.driverPath());
    const Identity identity = identify(driver);
    PlannedLine line;
    const QString serial = commandLine.value("serial"_s);
    line.text = serial.isEmpty() ? identity.serialLine : serial;
    line.serial = serialOption(commandLine, identity);
    line.turnaround = std::chrono::milliseconds(
        numberOption(commandLine, "turnaround"_s, 0, LongestTurnaroundMs));
    const QVector<Tag> tags = parseTags(driver, identity, given, stationOption(commandLine));
    const Plan plan =
        planCycle(driver, tags, line, blockLimitOption(commandLine), commandLine.isSet(suggest));

    if (commandLine.isSet(svg))
        replaceFile(commandLine.value(svg), drawPlan(driver, plan));
    if (commandLine.value(svg) == "-"_s)
        return AllRight;
    QTextStream out(stdout);
    if (commandLine.asJson())
        printJson(QJsonDocument(planToJson(driver, plan)));
    else
        printPlan(driver, plan, out);
    return AllRight;
}

}  // namespace host
