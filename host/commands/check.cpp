// tolvane-host check and series: what the driver makes of addresses.
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/output/table.h"
#include "host/tags/tag_text.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QTextStream>

namespace host {

namespace {

constexpr int LongestSeries = 100000;
constexpr int LongestStep = 65535;
constexpr int DoubleWordStep = -2;
enum SeriesResult { UnknownType = 0, Complete = 1, Capped = 2 };

}  // namespace

int checkCommand(const CommandLine &commandLine)
{
    const Driver driver = loadDriver(commandLine.driverPath());
    const Identity identity = identify(driver);
    QTextStream out(stdout);
    QJsonArray array;
    int refused = 0;
    for (const TagText &text : collectTags(commandLine.given())) {
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

int seriesCommand(const CommandLine &commandLine)
{
    const int wanted = numberOption(commandLine, "count"_s, 1, LongestSeries);
    const int distance = numberOption(commandLine, "step"_s, DoubleWordStep, LongestStep);

    const Driver driver = loadDriver(commandLine.driverPath());
    const QString text = commandLine.given().first();
    const Point first = parsePoint(driver, identify(driver), text, 0);
    if (first.count > 1)
        throw Failure("\"%1\": expected one address"_s.arg(text), BadInput);
    QVector<QString> texts;
    QVector<int> numbers;
    const int result =
        driver.multiCopy(first.regName, first.address, wanted, distance, texts, numbers);

    QTextStream out(stdout);
    if (commandLine.asJson()) {
        QJsonArray array;
        for (int i = 0; i < int(texts.size()); ++i)
            array.append(QJsonObject{{"address"_s, first.regName + QLatin1Char(':') + texts[i]},
                                     {"number"_s, numbers[i]}});
        printJson(QJsonDocument(array));
    } else {
        Table table({{Table::Left, 0, 0}, {}});
        for (int i = 0; i < int(texts.size()); ++i)
            table.add({first.regName + QLatin1Char(':') + texts[i],
                       "address number %1"_s.arg(numbers[i])});
        table.print(out);
    }
    if (result == Capped)
        QTextStream(stderr) << "tolvane-host: addresses beyond " << first.regName << ':'
                            << texts.last() << ", the last there is, were replaced by it\n";
    return AllRight;
}

}  // namespace host
