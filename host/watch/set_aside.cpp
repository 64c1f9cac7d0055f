// Counts the failures of each block and keeps those that have had too many.
#include "host/watch/set_aside.h"

#include <algorithm>

namespace host {

namespace {

constexpr int MostStrikes = 3;
constexpr std::chrono::seconds TryEvery(10);
constexpr int RestPerTrial = 3;

}  // namespace

bool SetAside::take(const Point &block, bool good, LineTime now)
{
    if (Away *away = trialOf(block)) {
        if (good) {
            if (back)
                back(away->block);
            m_away.removeAt(int(away - m_away.data()));
            return false;
        }
        away->onTrial = false;
        away->next = now + TryEvery;
        m_restUntil = now + RestPerTrial * (now - away->since);
        return true;
    }

    auto strikes = std::find_if(m_strikes.begin(), m_strikes.end(), [&](const Strikes &candidate) {
        return rangeOf(candidate.block) == rangeOf(block);
    });
    if (good) {
        if (strikes != m_strikes.end())
            m_strikes.erase(strikes);
        for (Strikes &others : m_strikes)
            others.othersAnswer = true;
        return false;
    }
    if (strikes == m_strikes.end())
        strikes = m_strikes.insert(m_strikes.end(), {block, 0, false});
    if (++strikes->count < MostStrikes || !strikes->othersAnswer)
        return false;
    m_strikes.erase(strikes);
    m_away.append({block, now + TryEvery, false, now});
    if (gone)
        gone(block);
    return true;
}

bool SetAside::tryAgain(LineTime now)
{
    const auto due = std::min_element(
        m_away.begin(), m_away.end(),
        [](const Away &left, const Away &right) { return left.next < right.next; });
    const bool trial =
        std::any_of(m_away.cbegin(), m_away.cend(), [](const Away &away) { return away.onTrial; });
    if (due == m_away.end() || trial || now < due->next || now < m_restUntil)
        return false;
    due->onTrial = true;
    due->since = now;
    return true;
}

bool SetAside::lineLost()
{
    const bool changed = !m_away.isEmpty();
    m_strikes.clear();
    m_away.clear();
    m_restUntil = LineTime(0);
    return changed;
}

QVector<Point> SetAside::polled() const
{
    QVector<Point> points = m_points;
    for (const Away &away : m_away) {
        if (away.onTrial)
            continue;
        QVector<Point> outside;
        for (const Point &point : std::as_const(points)) {
            const Part inside = partInside(point, away.block);
            if (inside.count == 0) {
                outside.append(point);
                continue;
            }
            Point before = point;
            before.count = inside.first;
            Point behind = point;
            behind.address += inside.first + inside.count;
            behind.count -= inside.first + inside.count;
            for (const Point &part : {before, behind})
                if (part.count > 0)
                    outside.append(part);
        }
        points = outside;
    }
    return points;
}

// Blocks may be cut otherwise when they are put back, so any overlap will do.
SetAside::Away *SetAside::trialOf(const Point &block)
{
    const auto found = std::find_if(m_away.begin(), m_away.end(), [&](const Away &away) {
        return away.onTrial && partInside(away.block, block).count > 0;
    });
    return found == m_away.end() ? nullptr : &*found;
}

}  // namespace host
