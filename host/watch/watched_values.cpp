// Keeps what is known of each word and bit, and judges the values that are made of them.
#include "host/watch/watched_values.h"

#include "host/tags/tag_text.h"

#include <algorithm>

namespace host {

namespace {

constexpr int TrendSamples = 16;
constexpr char NotYet[] = "not read yet";

}  // namespace

QString qualityText(Quality quality)
{
    return QLatin1String(quality == Quality::Good    ? "good"
                         : quality == Quality::Stale ? "stale"
                                                     : "bad");
}

WatchedValues::WatchedValues(const Driver &driver, const Session &session, const QVector<Tag> &tags)
    : m_session(session), m_coverage(tags)
{
    const QString notYet = QLatin1String(NotYet);
    for (int t = 0; t < int(tags.size()); ++t) {
        const Tag &tag = tags[t];
        const int count = valueCount(tag);
        const int step = tag.point.count / count;
        m_watched.append({tag, QVector<Unit>(tag.point.count, Unit{0, LineTime(0), notYet, true}),
                          int(m_values.size()), step});
        for (int i = 0; i < count; ++i) {
            WatchedValue value;
            value.tag = t;
            value.address = addressText(driver, tag, i);
            value.number = tag.point.address + i * step;
            value.stationNo = tag.point.stationNo;
            value.hasOwnName = host::hasOwnName(driver, tag);
            value.name = !value.hasOwnName ? value.address
                         : count == 1      ? tag.name
                                           : "%1[%2]"_s.arg(tag.name).arg(i);
            value.reason = notYet;
            m_values.append(value);
        }
    }
}

QVector<int> WatchedValues::read(const Point &block, LineTime now)
{
    QVector<int> changed;
    for (const Coverage::Covered &covered : m_coverage.of(block)) {
        Watched &watched = m_watched[covered.tag];
        Point part = watched.tag.point;
        part.address += covered.part.first;
        part.count = covered.part.count;
        const QVector<int> fresh = m_session.values(part);
        for (int i = 0; i < part.count; ++i) {
            Unit &unit = watched.units[covered.part.first + i];
            unit = {fresh[i], now, QString(), unit.isNew || unit.value != fresh[i]};
        }
        judge(watched, covered.part, now, changed);
    }
    return changed;
}

QVector<int> WatchedValues::giveUp(const Point &block, const QString &reason)
{
    QVector<int> changed;
    for (const Coverage::Covered &covered : m_coverage.of(block)) {
        Watched &watched = m_watched[covered.tag];
        for (int i = 0; i < covered.part.count; ++i)
            watched.units[covered.part.first + i].failure = reason;
        judge(watched, covered.part, LineTime(0), changed);
    }
    return changed;
}

QVector<int> WatchedValues::doubt(LineTime since, const QString &reason)
{
    QVector<int> changed;
    for (Watched &watched : m_watched) {
        for (Unit &unit : watched.units)
            if (unit.failure.isEmpty() && unit.readAt >= since)
                unit.failure = reason;
        judge(watched, {0, int(watched.units.size())}, LineTime(0), changed);
    }
    return changed;
}

QVector<int> WatchedValues::loseLine()
{
    QVector<int> changed;
    for (Watched &watched : m_watched) {
        for (Unit &unit : watched.units)
            unit.failure = "line lost"_s;
        judge(watched, {0, int(watched.units.size())}, LineTime(0), changed);
    }
    return changed;
}

QVector<int> WatchedValues::age(LineTime limit, LineTime now)
{
    QVector<int> changed;
    for (int i = 0; i < int(m_values.size()); ++i) {
        WatchedValue &value = m_values[i];
        if (value.quality != Quality::Good || now - *value.readAt <= limit)
            continue;
        value.quality = Quality::Stale;
        value.reason = "not read for three cycles"_s;
        changed.append(i);
    }
    return changed;
}

void WatchedValues::judge(Watched &watched, Part part, LineTime now, QVector<int> &changed)
{
    const int end = part.first + part.count;
    for (int start = part.first / watched.step * watched.step; start < end; start += watched.step) {
        const int index = watched.firstValue + start / watched.step;
        WatchedValue &value = m_values[index];
        LineTime readAt = LineTime::max();
        QString reason;
        bool isNew = false;
        for (int i = start; i < start + watched.step; ++i) {
            const Unit &unit = watched.units[i];
            readAt = std::min(readAt, unit.readAt);
            isNew = isNew || unit.isNew;
            if (reason.isEmpty())
                reason = unit.failure;
        }
        const Quality before = value.quality;
        const bool isFirst = value.reason == QLatin1String(NotYet) && reason != value.reason;
        value.quality = reason.isEmpty() ? Quality::Good : Quality::Bad;
        value.reason = reason;
        bool differs = value.quality != before || isFirst;
        if (value.quality == Quality::Good) {
            value.readAt = readAt;
            differs = (isNew && renew(watched, start, value, now)) || differs;
        }
        if (differs)
            changed.append(index);
    }
}

// Makes the value's text anew. Returns true when it is another.
bool WatchedValues::renew(Watched &watched, int start, WatchedValue &value, LineTime now)
{
    QVector<int> units;
    for (int i = start; i < start + watched.step; ++i) {
        units.append(watched.units[i].value);
        watched.units[i].isNew = false;
    }
    const QString text = formatValues(watched.tag, units).first();
    if (text == value.text)
        return false;
    value.changes += value.text.isEmpty() ? 0 : 1;
    value.text = text;
    value.changedAt = now;
    return true;
}

void WatchedValues::sample()
{
    for (WatchedValue &value : m_values) {
        if (value.quality == Quality::Bad)
            continue;
        bool isNumber = false;
        double number = value.text.toDouble(&isNumber);
        if (!isNumber)
            number = value.text.toInt(&isNumber, 16);
        if (!isNumber)
            continue;
        value.trend.append(number);
        if (value.trend.size() > TrendSamples)
            value.trend.removeFirst();
    }
}

}  // namespace host
