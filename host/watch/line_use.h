// How much of the line a stretch of time has used.
#pragma once

#include "host/exchange/loop.h"

namespace host {

struct LineUse
{
    LoopCounters counters;  ///< of the stretch
    double seconds = 0;
    double share = 0;  ///< time that the bytes travelled; 1 is all the line can carry

    /** The use from `earlier` to `now`, which lie so many seconds apart. */
    LineUse(const LoopCounters &now, const LoopCounters &earlier, double seconds, const Line &line);
    LineUse() = default;

    double exchangesPerSecond() const { return seconds > 0 ? counters.exchanges / seconds : 0; }

    /** "97.6 % of the line's capacity used", or that the line is none of its settings' speed. */
    QString shareText() const;

    /** "218 exchanges in 5.0 s (43.6/s), ..., 97.6 % of the line's capacity": the closing counts.
     */
    QString text() const;
};

}  // namespace host
