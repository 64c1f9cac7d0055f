// Lays the planned cycle out in 100 columns.
#include "host/plan/text.h"

#include "host/output/table.h"
#include "host/tags/tag_text.h"

#include <QtCore/QJsonArray>

#include <cmath>

namespace host {

namespace {

constexpr int NamesWidth = 32;  // what the other columns leave of the 100
constexpr int LabelWidth = 18;

double milliseconds(std::chrono::microseconds time)
{
    return static_cast<double>(time.count()) / 1000;
}

// Names with commas between, in lines.
QStringList wrappedNames(const Block &block, const QVector<Tag> &tags)
{
    QStringList lines(QString{});
    for (const int index : block.tags) {
        const QString name =
            tags[index].name + QLatin1String(index == block.tags.last() ? "" : ",");
        if (!lines.last().isEmpty() && lines.last().size() + 1 + name.size() > NamesWidth)
            lines.append(QString());
        lines.last() += (lines.last().isEmpty() ? QString() : " "_s) + name;
    }
    return lines;
}

void printBlocks(const Driver &driver, const Plan &plan, QTextStream &out)
{
    const Table::Column number{Table::Right, 7, 2};
    Table table({{Table::Right, 3, 0},
                 {Table::Left, 16, 2},
                 number,
                 number,
                 number,
                 number,
                 {Table::Right, 8, 1},
                 {Table::Left, 0, 2}});
    table.add(
        {"#"_s, "block"_s, "words"_s, "unused"_s, "request"_s, "reply"_s, "wire"_s, "tags"_s});
    const bool withStation = namesStations(plan.tags);
    for (int i = 0; i < int(plan.blocks.size()); ++i) {
        const Block &block = plan.blocks[i];
        QStringList cells{QString::number(i + 1),
                          pointText(driver, block.point, withStation),
                          QString::number(block.point.count),
                          block.unusedWords() == 0 ? "-"_s : QString::number(block.unusedWords()),
                          QString::number(block.requestBytes),
                          QString::number(block.replyBytes),
                          timeText(plan.line.wireTime(block.requestBytes + block.replyBytes))};
        for (const QString &names : wrappedNames(block, plan.tags)) {
            table.add(cells + QStringList(names));
            for (QString &cell : cells)
                cell.clear();
        }
    }
    table.print(out);
}

QString costsText(const Plan &plan, const Costs &costs)
{
    return "%1, %2, %3"_s.arg(countText(costs.requests, "request"), countText(costs.bytes, "byte"),
                              timeText(plan.line.time(costs)));
}

// How the time of other requests for the same tags compares with the planned cycle's.
QString comparison(const Plan &plan, const Costs &costs)
{
    const double percent =
        100 * (milliseconds(plan.line.time(costs)) / milliseconds(plan.line.time(plan.costs)) - 1);
    const QString size = QString::number(std::abs(percent), 'f', 1);
    if (size == "0.0"_s)
        return "as long"_s;
    return "%1 % %2"_s.arg(size, QLatin1String(percent > 0 ? "longer" : "shorter"));
}

void printTotals(const Plan &plan, QTextStream &out)
{
    int words = 0;
    int unused = 0;
    for (const Block &block : plan.blocks) {
        words += block.point.count;
        unused += block.unusedWords();
    }
    Table table({{Table::Left, LabelWidth, 0}, {}});
    table.add({"one poll cycle"_s,
               "%1: %2 cycles a second"_s.arg(
                   costsText(plan, plan.costs),
                   QString::number(1000 / milliseconds(plan.line.time(plan.costs)), 'f', 1))});
    if (unused > 0)
        table.add(
            {"unused words"_s,
             "%1 of %2: no tag wants them, they are read along with their neighbours"_s.arg(unused)
                 .arg(words)});
    table.add({"a request per tag"_s,
               "%1: %2"_s.arg(costsText(plan, plan.oneByOne), comparison(plan, plan.oneByOne))});
    if (plan.bestLimit == plan.blockLimit)
        table.add({"shortest cycle"_s, "this one: no other block limit makes it shorter"_s});
    else if (plan.bestLimit > 0)
        table.add({"shortest cycle"_s,
                   "with a block limit of %1: %2: %3"_s.arg(QString::number(plan.bestLimit),
                                                            costsText(plan, plan.best),
                                                            comparison(plan, plan.best))});
    table.print(out);
}

QJsonObject toJson(const PlannedLine &line, const Costs &costs)
{
    return {{"requests"_s, costs.requests},
            {"bytes"_s, costs.bytes},
            {"wireMs"_s, milliseconds(line.wireTime(costs.bytes))},
            {"ms"_s, milliseconds(line.time(costs))}};
}

QJsonObject toJson(const Driver &driver, const Plan &plan, const Block &block)
{
    QJsonArray names;
    for (const int index : block.tags)
        names.append(plan.tags[index].name);
    QJsonObject object = blockObject(driver, block.point, namesStations(plan.tags));
    object.insert("unused"_s, block.unusedWords());
    object.insert("requestBytes"_s, block.requestBytes);
    object.insert("replyBytes"_s, block.replyBytes);
    object.insert("wireMs"_s,
                  milliseconds(plan.line.wireTime(block.requestBytes + block.replyBytes)));
    object.insert("tags"_s, names);
    return object;
}

}  // namespace

QString timeText(std::chrono::microseconds time)
{
    return QString::number(milliseconds(time), 'f', 2) + " ms"_s;
}

QString settingsText(const Plan &plan)
{
    return "tags joined up to %1 words; %2, %3 bits a byte; turnaround %4 ms"_s.arg(
        QString::number(plan.blockLimit), plan.line.text,
        QString::number(plan.line.serial.bitsPerByte()),
        QString::number(plan.line.turnaround.count()));
}

void printPlan(const Driver &driver, const Plan &plan, QTextStream &out)
{
    out << settingsText(plan) << "\n\n";
    printBlocks(driver, plan, out);
    out << '\n';
    printTotals(plan, out);
}

QJsonObject planToJson(const Driver &driver, const Plan &plan)
{
    QJsonArray blocks;
    for (const Block &block : plan.blocks)
        blocks.append(toJson(driver, plan, block));
    QJsonObject object{{"blockLimit"_s, plan.blockLimit},
                       {"serial"_s, plan.line.text},
                       {"turnaroundMs"_s, static_cast<double>(plan.line.turnaround.count())},
                       {"blocks"_s, blocks},
                       {"cycle"_s, toJson(plan.line, plan.costs)},
                       {"requestPerTag"_s, toJson(plan.line, plan.oneByOne)}};
    if (plan.bestLimit > 0) {
        QJsonObject best = toJson(plan.line, plan.best);
        best.insert("blockLimit"_s, plan.bestLimit);
        object.insert("suggestion"_s, best);
    }
    return object;
}

}  // namespace host
