// Works the counts of the loop out into rates.
#include "host/watch/line_use.h"

#include "host/output/table.h"

namespace host {

namespace {

constexpr double FasterThanItsSettings = 1.05;

}  // namespace

LineUse::LineUse(const LoopCounters &now, const LoopCounters &earlier, double elapsed,
                 const Line &line)
    : counters(now - earlier), seconds(elapsed)
{
    // Asked for many bytes, because the answer comes in whole microseconds.
    constexpr int Many = 100000;
    const std::chrono::duration<double> travel = line.wireTime(Many);
    const double bytes = double(counters.bytesSent + counters.bytesReceived);
    share = seconds > 0 ? bytes * travel.count() / Many / seconds : 0;
}

QString LineUse::shareText() const
{
    // A pseudo-terminal without a pace, or a network, can carry more than the settings say.
    return share > FasterThanItsSettings
               ? "line faster than its settings"_s
               : "%1 % of the line's capacity used"_s.arg(100 * share, 0, 'f', 1);
}

QString LineUse::text() const
{
    return "%1 in %2 s (%3/s), %4, %5 %6, %7"_s.arg(countText(counters.exchanges, "exchange"))
               .arg(seconds, 0, 'f', 1)
               .arg(exchangesPerSecond(), 0, 'f', 1)
               .arg(countText(counters.wordsRead, "word"))
               .arg(counters.retries)
               .arg(QLatin1String(counters.retries == 1 ? "retry" : "retries"),
                    countText(counters.errors, "error")) +
           QLatin1Char('\n') + shareText() + QLatin1Char('\n');
}

}  // namespace host
