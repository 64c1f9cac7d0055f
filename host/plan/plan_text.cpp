// Lays the planned cycle out in 100 columns.
#include "host/plan/plan_text.h"

#include "host/output/table.h"
#include "host/tags/tag_text.h"

#include <QtCore/QJsonArray>

#include <algorithm>

namespace host {

namespace {

constexpr int Columns = 100;
constexpr int TagColumn = 68;  // of the table as long as no column grows
constexpr int LabelColumn = 20;

double milliseconds(std::chrono::microseconds time)
{
    return static_cast<double>(time.count()) / 1000;
}

// Names with commas between, in lines of what is left of the terminal's width.
QStringList wrappedNames(const Block &block, const QVector<Tag> &tags)
{
    QStringList lines(QString{});
    for (const int index : block.tags) {
        const QString name =
            tags[index].name + QLatin1String(index == block.tags.last() ? "" : ",");
        const int width = int(lines.last().size() + 1 + name.size());
        if (!lines.last().isEmpty() && width > Columns - TagColumn)
            lines.append(QString());
        lines.last() += (lines.last().isEmpty() ? QString() : " "_s) + name;
    }
    return lines;
}

bool stationsDiffer(const QVector<Block> &blocks)
{
    return std::any_of(blocks.begin(), blocks.end(), [&](const Block &block) {
        return block.point.stationNo != blocks.first().point.stationNo;
    });
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
    table.add("#,block,words,bridged,request,reply,wire,tags"_s.split(QLatin1Char(',')));
    const bool stations = stationsDiffer(plan.blocks);
    for (int i = 0; i < int(plan.blocks.size()); ++i) {
        const Block &block = plan.blocks[i];
        const QStringList names = wrappedNames(block, plan.tags);
        const int bridged = block.bridgedCount();
        table.add({QString::number(i + 1), pointText(driver, block.point, stations),
                   QString::number(block.words), bridged == 0 ? "-"_s : QString::number(bridged),
                   QString::number(block.requestBytes), QString::number(block.replyBytes),
                   timeText(plan.line.wireTime(block.bytes())), names.first()});
        for (const QString &more : names.mid(1))
            table.add({QString(), QString(), QString(), QString(), QString(), QString(), QString(),
                       more});
    }
    table.print(out);
}

QString costsText(const CycleCosts &costs)
{
    return "%1, %2, %3"_s.arg(countText(costs.requests, "request"), countText(costs.bytes, "byte"),
                              timeText(costs.time));
}

QString ratioText(const CycleCosts &costs, const CycleCosts &plan)
{
    return QString::number(static_cast<double>(costs.time.count()) /
                               static_cast<double>(std::max<qint64>(1, plan.time.count())),
                           'f', 1);
}

double percentShorter(const CycleCosts &costs, const CycleCosts &plan)
{
    return 100 - 100 * static_cast<double>(costs.time.count()) /
                     static_cast<double>(std::max<qint64>(1, plan.time.count()));
}

void printTotals(const Plan &plan, QTextStream &out)
{
    Table table({{Table::Left, LabelColumn - 2, 0}, {}});
    const auto row = [&](const char *label, const QString &text) {
        table.add({QLatin1String(label), text});
    };
    const double seconds = static_cast<double>(plan.costs.time.count()) / 1e6;
    row("one poll cycle", "%1: %2 cycles a second"_s.arg(costsText(plan.costs),
                                                         QString::number(1 / seconds, 'f', 1)));
    row("a request per tag", "%1: %2 times as long"_s.arg(costsText(plan.oneByOne),
                                                          ratioText(plan.oneByOne, plan.costs)));
    if (plan.best.words > 0) {
        const double percent = percentShorter(plan.best.costs, plan.costs);
        row("shortest cycle",
            "with a block limit of %1: %2"_s.arg(plan.best.words).arg(costsText(plan.best.costs)));
        row("", percent > 0 ? "%1 % shorter than with %2"_s.arg(QString::number(percent, 'f', 1))
                                  .arg(plan.blockLimit)
                            : "no other makes it shorter"_s);
    }
    table.print(out);
}

QJsonObject toJson(const CycleCosts &costs)
{
    return {{"requests"_s, costs.requests},
            {"bytes"_s, costs.bytes},
            {"wireMs"_s, milliseconds(costs.wireTime)},
            {"ms"_s, milliseconds(costs.time)}};
}

QJsonObject toJson(const Driver &driver, const Plan &plan, const Block &block)
{
    QJsonArray names;
    for (const int index : block.tags)
        names.append(plan.tags[index].name);
    QJsonObject object = blockObject(driver, block.point, namesStations(plan.tags));
    object.insert("bridged"_s, block.bridgedCount());
    object.insert("requestBytes"_s, block.requestBytes);
    object.insert("replyBytes"_s, block.replyBytes);
    object.insert("wireMs"_s, milliseconds(plan.line.wireTime(block.bytes())));
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
        QString::number(plan.blockLimit), plan.lineText,
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
                       {"serial"_s, plan.lineText},
                       {"turnaroundMs"_s, static_cast<double>(plan.line.turnaround.count())},
                       {"blocks"_s, blocks},
                       {"cycle"_s, toJson(plan.costs)},
                       {"requestPerTag"_s, toJson(plan.oneByOne)}};
    if (plan.best.words > 0) {
        QJsonObject best = toJson(plan.best.costs);
        best.insert("blockLimit"_s, plan.best.words);
        object.insert("suggestion"_s, best);
    }
    return object;
}

}  // namespace host
