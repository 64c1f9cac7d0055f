// tolvane-host check: what the driver makes of addresses.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/output/table.h"
#include "host/tags/tag_text.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QTextStream>

#include <limits>

namespace host {

namespace {

int check(const CommandLine &commandLine)
{
    const QStringList addresses = commandLine.positionalArguments().mid(1);
    if (addresses.isEmpty())
        throw Failure("nothing to check; expected ADDRESS..."_s, BadInput);

    const Driver driver = loadDriver(commandLine.driverPath());
    const Identity identity = identify(driver);
    QTextStream out(stdout);
    QJsonArray array;
    int refused = 0;
    for (const TagText &text : collectTags(addresses)) {
        const QString label = text.name.isEmpty() ? text.address : text.name;
        QJsonObject object{{"tag"_s, label}, {"address"_s, text.address}};
        QString verdict;
        try {
            const Tag tag = parseTag(driver, identity, text, 1);
            const Point &point = tag.point;
            verdict = "%1: valid, %2 from address number %3"_s
                          .arg(label, countText(point.count, point.isBit ? "bit" : "word"))
                          .arg(point.address);
            object = tagObject(driver, tag);
            object.insert("count"_s, point.count);
        } catch (const Failure &failure) {
            ++refused;
            verdict = failure.text();
            object.insert("reason"_s, verdict);
        }
        object.insert("source"_s, text.source);
        if (!commandLine.asJson())
            out << verdict << '\n';
        array.append(object);
    }
    if (commandLine.asJson())
        printJson(QJsonDocument(array));
    return refused == 0 ? AllRight : SomethingFailed;
}

}  // namespace

int checkCommand(const QStringList &arguments)
{
    CommandLine commandLine("check"_s,
                            "Asks the driver about each address: valid, or why not.\n"
                            "Exit status 1 when one of them is not valid."_s);
    commandLine.addPositionalArgument(
        "addresses"_s, "Such as D_W:100x10, level=D_W:100:float, M_bit:20.5, or a tag file."_s,
        "ADDRESS..."_s);
    commandLine.addJsonOption("Print a JSON array, an object an address.");
    commandLine.read(arguments, std::numeric_limits<int>::max());
    return check(commandLine);
}

}  // namespace host
