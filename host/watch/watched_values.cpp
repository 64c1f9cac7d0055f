// Compares what each exchange has read with what was known.
#include "host/watch/watched_values.h"

#include "host/tag_text.h"

#include <algorithm>

namespace host {

namespace {

constexpr int TrendSamples = 16;
constexpr int BitsPerWord = 16;
constexpr int NotRead = -1;

QString areaName(const QString &regName)
{
    return regName.section(QLatin1Char('_'), 0, 0);
}

}  // namespace

WatchedValues::WatchedValues(const Driver &driver, const Session &session, const QVector<Tag> &tags)
    : m_session(session)
{
    for (const Tag &tag : tags) {
        m_watched.append({tag, QVector<int>(tag.point.count, NotRead), int(m_values.size())});
        const int count = valueCount(tag);
        for (int i = 0; i < count; ++i) {
            WatchedValue value;
            value.address = addressText(driver, tag, i);
            value.name = !hasOwnName(driver, tag) ? value.address
                         : count == 1             ? tag.name
                                                  : QStringLiteral("%1[%2]").arg(tag.name).arg(i);
            m_values.append(value);
        }
    }
}

QVector<int> WatchedValues::update(const Exchange &exchange)
{
    QVector<int> changed;
    const bool isRead = exchange.outcome == Outcome::Good && exchange.frame.readCount > 0;
    for (Watched &watched : m_watched)
        if (isRead && watched.tag.point.stationNo == exchange.frame.var.stationNo)
            update(watched, exchange.frame.var, changed);
    return changed;
}

void WatchedValues::update(Watched &watched, const VARIABLE &item, QVector<int> &changed)
{
    const Point &point = watched.tag.point;
    if (areaName(point.regName) != areaName(item.regName))
        return;
    // Bits "M_bit" are read as the words "M_W" that hold them.
    const int scale = point.isBit && point.regName != item.regName ? BitsPerWord : 1;
    const int first = std::max(point.address, item.startAddr * scale);
    const int end = std::min(point.address + point.count, (item.startAddr + item.count) * scale);
    if (first >= end)
        return;

    Point part = point;
    part.address = first;
    part.count = end - first;
    const QVector<int> fresh = m_session.values(part);
    const int step = point.count / valueCount(watched.tag);
    const int offset = first - point.address;
    for (int unit = offset; unit < offset + part.count;) {
        const int valueStart = unit / step * step;
        const int valueEnd = valueStart + step;
        bool differs = false;
        for (; unit < std::min(valueEnd, offset + part.count); ++unit) {
            differs = differs || watched.units[unit] != fresh[unit - offset];
            watched.units[unit] = fresh[unit - offset];
        }
        const QVector<int> units = watched.units.mid(valueStart, step);
        if (differs && !units.contains(NotRead))
            take(formatValues(watched.tag, units).first(), watched.firstValue + valueStart / step,
                 changed);
    }
}

void WatchedValues::take(const QString &text, int value, QVector<int> &changed)
{
    WatchedValue &watched = m_values[value];
    watched.changes += watched.text.isEmpty() ? 0 : 1;
    watched.text = text;
    watched.sinceChange.start();
    changed.append(value);
}

void WatchedValues::sample()
{
    for (WatchedValue &value : m_values) {
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
