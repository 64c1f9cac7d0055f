// tolvane-host check: what the driver makes of addresses.
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/output/table.h"
#include "host/tags/tag_text.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QTextStream>

namespace host {

int checkCommand(const CommandLine &commandLine)
{
    const Driver driver = loadDriver(commandLine.driverPath());
    QTextStream out(stdout);
    QJsonArray array;
    int refused = 0;
    for (const TagText &text : collectTags(commandLine.given())) {
        const QString label = text.name.isEmpty() ? text.address : text.name;
        QJsonObject object{{"tag"_s, label}, {"address"_s, text.address}};
        QString verdict;
        try {
            const Tag tag = parseTag(driver, text);
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

}  // namespace host
