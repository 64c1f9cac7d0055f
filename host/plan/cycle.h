// One poll cycle as the driver will ask for it, and what it costs on the line.
#pragma once

#include "host/driver/session.h"
#include "host/line/serial_settings.h"
#include "host/tags/tags.h"

namespace host {

/** One request of the cycle. */
struct Block
{
    Point point;  ///< as the driver asks: words, or contacts of TX and CX
    int requestBytes = 0;
    int replyBytes = 0;
    QVector<int> tags;   ///< those it reads, by their place in the list of tags
    QVector<bool> used;  ///< whether a tag wants it, for each of the point's words

    int unusedWords() const { return int(used.count(false)); }
};

struct Costs
{
    int requests = 0;
    int bytes = 0;  ///< of requests and replies
};

Costs costsOf(const QVector<Block> &blocks);

/** The line that a cycle is planned for. */
struct PlannedLine
{
    SerialSettings serial;
    QString text;                             ///< the serial settings as given
    std::chrono::milliseconds turnaround{0};  ///< between a request and its reply

    std::chrono::microseconds wireTime(int bytes) const { return serial.wireTime(bytes); }
    std::chrono::microseconds time(const Costs &costs) const
    {
        return wireTime(costs.bytes) + costs.requests * turnaround;
    }
};

struct Plan
{
    QVector<Tag> tags;
    PlannedLine line;
    int blockLimit = 0;
    QVector<Block> blocks;  ///< in the order of sending
    Costs costs;
    Costs oneByOne;     ///< with a request of its own for every tag
    int bestLimit = 0;  ///< the lowest block limit with the shortest cycle; 0 when not asked for
    Costs best;         ///< of the cycle with that limit
};

/**
 * Walks the driver through the cycle without a line: every request gets a reply whose words are 0.
 * With findBest, through those of all other block limits, too. Begins a session of its own.
 */
Plan planCycle(const Driver &driver, const QVector<Tag> &tags, const PlannedLine &line,
               int blockLimit, bool findBest);

}  // namespace host
