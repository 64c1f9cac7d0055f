// Blocks that are given up again and again are set aside, so that one dead address does not slow
// all others.
#pragma once

#include "host/watch/coverage.h"
#include "host/watch/poll_pace.h"

#include <functional>

namespace host {

/**
 * A block that was given up three times in a row, while others answered, is no longer polled. Every
 * ten seconds it is polled along again: given up once more, it is set aside for as long again;
 * answering, it is back. All that are set aside together take a quarter of the time at most.
 *
 * Where nothing answers at all there is nobody to protect, and everything stays polled.
 */
class SetAside
{
public:
    explicit SetAside(const QVector<Point> &points) : m_points(points) {}

    /** Called once for each block that is set aside, and when it answers again. */
    std::function<void(const Point &block)> gone;
    std::function<void(const Point &block)> back;

    /** Takes note of a read's end. Returns true when polled() has changed. */
    bool take(const Point &block, bool good, LineTime now);

    /** Puts a block back whose time has come. Returns true when polled() has changed. */
    bool tryAgain(LineTime now);

    /** The line was lost: all is forgotten. Returns true when polled() has changed. */
    bool lineLost();

    /** What is to be polled at present: the points, or the parts of them outside the blocks. */
    QVector<Point> polled() const;

private:
    struct Strikes
    {
        Point block;
        int count;
        bool othersAnswer;  // since the first of them
    };
    struct Away
    {
        Point block;
        LineTime next;  // when it is polled along again
        bool onTrial;   // it is
        LineTime since;
    };
    Away *trialOf(const Point &block);

    QVector<Point> m_points;
    QVector<Strikes> m_strikes;
    QVector<Away> m_away;
    LineTime m_restUntil{0};
};

}  // namespace host
