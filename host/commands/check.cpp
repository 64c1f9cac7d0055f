// tolvane-host check and series: what the driver makes of addresses.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/connection.h"
#include "host/failure.h"
#include "host/table.h"
#include "host/tag_text.h"

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
        throw Failure(QStringLiteral("nothing to check; expected ADDRESS..."), BadInput);

    const Driver driver = loadDriver(commandLine.driverPath());
    const Identity identity = identify(driver);
    QTextStream out(stdout);
    QJsonArray array;
    int refused = 0;
    for (const TagText &text : collectTags(addresses)) {
        const QString label = text.name.isEmpty() ? text.address : text.name;
        QJsonObject object{{QStringLiteral("tag"), label},
                           {QStringLiteral("address"), text.address}};
        QString verdict;
        try {
            const Tag tag = parseTag(driver, identity, text, 1);
            const Point &point = tag.point;
            verdict = QStringLiteral("%1: valid, %2 from address number %3")
                          .arg(label, countText(point.count, point.isBit ? "bit" : "word"))
                          .arg(point.address);
            object = tagObject(driver, tag);
            object.insert(QStringLiteral("count"), point.count);
        } catch (const Failure &failure) {
            ++refused;
            verdict = QString::fromUtf8(failure.what());
            object.insert(QStringLiteral("reason"), verdict);
        }
        object.insert(QStringLiteral("source"), text.source);
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
    CommandLine commandLine(
        QStringLiteral("check"),
        QStringLiteral("Asks the driver about each address: valid, or why not.\n"
                       "Exit status 1 when one of them is not valid."));
    commandLine.addPositionalArgument(
        QStringLiteral("addresses"),
        QStringLiteral("Such as D_W:100x10, level=D_W:100:float, M_bit:20.5, or a tag file."),
        QStringLiteral("ADDRESS..."));
    commandLine.addJsonOption("Print a JSON array, an object an address.");
    commandLine.read(arguments, std::numeric_limits<int>::max());
    return check(commandLine);
}

int seriesCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        QStringLiteral("series"),
        QStringLiteral("The addresses that a multiple copy of a screen object gets."));
    commandLine.addPositionalArgument(QStringLiteral("address"),
                                      QStringLiteral("The first one, such as D_W:100."),
                                      QStringLiteral("ADDRESS"));
    const QCommandLineOption count(QStringLiteral("count"),
                                   QStringLiteral("How many addresses (default: 10)."),
                                   QStringLiteral("n"), QStringLiteral("10"));
    const QCommandLineOption step(
        QStringLiteral("step"),
        QStringLiteral("Address numbers from one to the next; -1 is one 16-bit value, -2 one "
                       "32-bit value (default: 1)."),
        QStringLiteral("s"), QStringLiteral("1"));
    commandLine.addOptions({count, step});
    commandLine.addJsonOption("Print a JSON array.");
    commandLine.read(arguments, 1);
    if (commandLine.positionalArguments().size() < 2)
        throw Failure(QStringLiteral("no address given; expected ADDRESS, such as D_W:100"),
                      BadInput);
    const int wanted = numberOption(commandLine, QStringLiteral("count"), 1, LongestSeries);
    const int distance =
        numberOption(commandLine, QStringLiteral("step"), DoubleWordStep, LongestStep);

    const Driver driver = loadDriver(commandLine.driverPath());
    const QString text = commandLine.positionalArguments().at(1);
    const Point first = parsePoint(driver, identify(driver), text, 0);
    if (first.count > 1)
        throw Failure(QStringLiteral("\"%1\": expected one address").arg(text), BadInput);
    QVector<QString> texts;
    QVector<int> numbers;
    const int result =
        driver.multiCopy(first.regName, first.address, wanted, distance, texts, numbers);

    QTextStream out(stdout);
    if (commandLine.asJson()) {
        QJsonArray array;
        for (int i = 0; i < int(texts.size()); ++i)
            array.append(QJsonObject{
                {QStringLiteral("address"), first.regName + QLatin1Char(':') + texts[i]},
                {QStringLiteral("number"), numbers[i]}});
        printJson(QJsonDocument(array));
    } else {
        Table table({{Table::Left, 0, 0}, {}});
        for (int i = 0; i < int(texts.size()); ++i)
            table.add({first.regName + QLatin1Char(':') + texts[i],
                       QStringLiteral("address number %1").arg(numbers[i])});
        table.print(out);
    }
    if (result == Capped)
        QTextStream(stderr) << "tolvane-host: addresses beyond " << first.regName << ':'
                            << texts.last() << ", the last there is, were replaced by it\n";
    return AllRight;
}

}  // namespace host
