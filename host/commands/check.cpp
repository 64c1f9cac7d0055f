// tolvane-host check and series: what the driver makes of addresses.
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

constexpr int LongestSeries = 100000;
constexpr int LongestStep = 65535;
constexpr int DoubleWordStep = -2;
enum SeriesResult { UnknownType = 0, Complete = 1, Capped = 2 };

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
            verdict = QString::fromUtf8(failure.what());
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

int seriesCommand(const QStringList &arguments)
{
    CommandLine commandLine("series"_s,
                            "The addresses that a multiple copy of a screen object gets."_s);
    commandLine.addPositionalArgument("address"_s, "The first one, such as D_W:100."_s,
                                      "ADDRESS"_s);
    const QCommandLineOption count("count"_s, "How many addresses (default: 10)."_s, "n"_s, "10"_s);
    const QCommandLineOption step(
        "step"_s,
        "Address numbers from one to the next; -1 is one 16-bit value, -2 one "
        "32-bit value (default: 1)."_s,
        "s"_s, "1"_s);
    commandLine.addOptions({count, step});
    commandLine.addJsonOption("Print a JSON array.");
    commandLine.read(arguments, 1);
    if (commandLine.positionalArguments().size() < 2)
        throw Failure("no address given; expected ADDRESS, such as D_W:100"_s, BadInput);
    const int wanted = numberOption(commandLine, "count"_s, 1, LongestSeries);
    const int distance = numberOption(commandLine, "step"_s, DoubleWordStep, LongestStep);

    const Driver driver = loadDriver(commandLine.driverPath());
    const QString text = commandLine.positionalArguments().at(1);
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
