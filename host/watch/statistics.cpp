// Counts, and lays the counts out as tables and as JSON.
#include "host/watch/statistics.h"

#include "host/output/table.h"
#include "host/tags/tag_text.h"

#include <algorithm>

namespace host {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

QString numberText(LineTime time)
{
    return QString::number(Milliseconds(time).count(), 'f', 1);
}

QString lastGoodText(const ExchangeStatistics &statistics, LineTime now)
{
    if (!statistics.lastGood)
        return "never"_s;
    const std::chrono::duration<double> ago = now - *statistics.lastGood;
    return "%1 s ago"_s.arg(ago.count(), 0, 'f', 1);
}

QStringList heading(const char *first)
{
    return {QLatin1String(first), "good"_s, "retries"_s, "errors"_s,
            "last good"_s,        "min"_s,  "mean"_s,    "max ms"_s,
            "failures"_s};
}

QStringList row(const QString &first, const ExchangeStatistics &statistics, LineTime now)
{
    const auto timeText = [&](LineTime time) {
        return statistics.exchanges == 0 ? "-"_s : numberText(time);
    };
    return {first,
            QString::number(statistics.exchanges),
            QString::number(statistics.retries),
            QString::number(statistics.givenUp),
            lastGoodText(statistics, now),
            timeText(statistics.shortest),
            timeText(statistics.mean()),
            timeText(statistics.longest),
            statistics.failuresText()};
}

Table newTable(const char *first)
{
    Table table({{Table::Left, 0, 0},
                 {Table::Right},
                 {Table::Right},
                 {Table::Right},
                 {Table::Right},
                 {Table::Right},
                 {Table::Right},
                 {Table::Right},
                 {}});
    table.add(heading(first));
    return table;
}

QJsonObject objectOf(QJsonObject object, const ExchangeStatistics &statistics, LineTime now)
{
    const auto milliseconds = [](LineTime time) { return Milliseconds(time).count(); };
    QJsonObject failures;
    for (auto reason = statistics.failures.cbegin(); reason != statistics.failures.cend(); ++reason)
        failures.insert(reason.key(), reason.value());
    object.insert("good"_s, statistics.exchanges);
    object.insert("retries"_s, statistics.retries);
    object.insert("errors"_s, statistics.givenUp);
    object.insert("failures"_s, failures);
    object.insert("lastGoodMsAgo"_s,
                  statistics.lastGood ? milliseconds(now - *statistics.lastGood) : QJsonValue());
    object.insert("roundTripMs"_s, QJsonObject{{"min"_s, milliseconds(statistics.shortest)},
                                               {"mean"_s, milliseconds(statistics.mean())},
                                               {"max"_s, milliseconds(statistics.longest)}});
    return object;
}

}  // namespace

void ExchangeStatistics::good(LineTime roundTrip, LineTime now)
{
    shortest = exchanges == 0 ? roundTrip : std::min(shortest, roundTrip);
    longest = std::max(longest, roundTrip);
    total += roundTrip;
    lastGood = now;
    ++exchanges;
}

void ExchangeStatistics::fail(const QString &reason, bool again)
{
    ++(again ? retries : givenUp);
    ++failures[reason];
}

QString ExchangeStatistics::failuresText() const
{
    QStringList reasons = failures.keys();
    std::stable_sort(reasons.begin(), reasons.end(),
                     [this](const QString &left, const QString &right) {
                         return failures[left] > failures[right];
                     });
    for (QString &reason : reasons)
        reason += " %1"_s.arg(failures[reason]);
    return reasons.join(", "_s);
}

Statistics::Statistics(const Driver &driver, const QVector<Tag> &tags)
    : m_driver(driver), m_coverage(tags), m_list(tags), m_tags(tags.size())
{
}

void Statistics::good(const Point &block, LineTime roundTrip, LineTime now)
{
    take(block, [=](ExchangeStatistics &statistics) { statistics.good(roundTrip, now); });
}

void Statistics::fail(const Point &block, const QString &reason, bool again)
{
    take(block, [&](ExchangeStatistics &statistics) { statistics.fail(reason, again); });
}

template <typename Take>
void Statistics::take(const Point &block, const Take &takeIn)
{
    takeIn(m_blocks[block]);
    takeIn(m_all);
    for (const Coverage::Covered &covered : m_coverage.of(block))
        takeIn(m_tags[covered.tag]);
}

void Statistics::print(QTextStream &out, LineTime now) const
{
    Table blocks = newTable("block");
    for (const auto &[block, statistics] : m_blocks)
        blocks.add(row(pointText(m_driver, block, namesStations(m_list)), statistics, now));
    blocks.print(out);
    Table tags = newTable("tag");
    for (int i = 0; i < int(m_list.size()); ++i)
        tags.add(row(m_list[i].name, m_tags[i], now));
    out << '\n';
    tags.print(out);
}

QJsonObject Statistics::object(LineTime now) const
{
    QJsonArray blocks;
    for (const auto &[block, statistics] : m_blocks)
        blocks.append(
            objectOf(blockObject(m_driver, block, namesStations(m_list)), statistics, now));
    QJsonArray tags;
    for (int i = 0; i < int(m_list.size()); ++i)
        tags.append(objectOf(tagObject(m_driver, m_list[i]), m_tags[i], now));
    return {{"blocks"_s, blocks}, {"tags"_s, tags}};
}

}  // namespace host
