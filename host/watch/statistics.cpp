// Counts, and lays the counts out as tables and as JSON.
#include "host/watch/statistics.h"

#include "host/output/table.h"
#include "host/tags/tag_text.h"

#include <algorithm>

namespace host {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

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

void Statistics::good(const Point &block, LineTime roundTrip, LineTime now)
{
    m_blocks[block].good(roundTrip, now);
    m_all.good(roundTrip, now);
}

void Statistics::fail(const Point &block, const QString &reason, bool again)
{
    m_blocks[block].fail(reason, again);
    m_all.fail(reason, again);
}

void Statistics::print(QTextStream &out, LineTime now) const
{
    const Table::Column number{Table::Right};
    Table table({{Table::Left, 0, 0}, number, number, number, number, number, number, number, {}});
    table.add({"block"_s, "good"_s, "retries"_s, "errors"_s, "last good"_s, "min"_s, "mean"_s,
               "max ms"_s, "failures"_s});
    for (const auto &[block, statistics] : m_blocks) {
        const bool isKnown = statistics.lastGood.has_value();
        const auto text = [&](LineTime time) {
            return isKnown ? QString::number(Milliseconds(time).count(), 'f', 1) : "-"_s;
        };
        const std::chrono::duration<double> ago = now - statistics.lastGood.value_or(now);
        table.add({pointText(m_driver, block, m_withStation), QString::number(statistics.exchanges),
                   QString::number(statistics.retries), QString::number(statistics.givenUp),
                   isKnown ? "%1 s ago"_s.arg(ago.count(), 0, 'f', 1) : "never"_s,
                   text(statistics.shortest), text(statistics.mean()), text(statistics.longest),
                   statistics.failuresText()});
    }
    table.print(out);
}

QJsonObject Statistics::object(LineTime now) const
{
    QJsonArray blocks;
    for (const auto &[block, statistics] : m_blocks)
        blocks.append(objectOf(blockObject(m_driver, block, m_withStation), statistics, now));
    return {{"blocks"_s, blocks}};
}

}  // namespace host
