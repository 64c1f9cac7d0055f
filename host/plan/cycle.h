// One poll cycle as the driver will ask for it, and what it costs on the line.
#pragma once

#include "host/driver/session.h"
#include "host/line/serial_settings.h"
#include "host/tags/tags.h"

namespace host {

/** Consecutive words, or contacts of TX and CX. */
struct Span
{
    int first = 0;
    int count = 0;

    int end() const { return first + count; }
};

/** One request of the cycle. */
struct Block
{
    Point point;  ///< as the driver asks: words, or contacts of TX and CX
    int words = 0;
    int requestBytes = 0;
    int replyBytes = 0;
    QVector<int> tags;      ///< those it reads, by their place in the list of tags
    QVector<Span> bridged;  ///< what it reads between the tags because that is cheaper

    int bytes() const { return requestBytes + replyBytes; }
    int bridgedCount() const;
};

/** The line that a cycle is costed for. */
struct LineCosts
{
    SerialSettings serial;
    std::chrono::milliseconds turnaround{0};  ///< between a request and its reply

    std::chrono::microseconds wireTime(int bytes) const { return serial.wireTime(bytes); }
};

constexpr int LongestBlock = 127;  ///< words that one request can read

struct CycleCosts
{
    int requests = 0;
    int bytes = 0;
    std::chrono::microseconds wireTime{0};
    std::chrono::microseconds time{0};  ///< with the turnarounds
};

CycleCosts costsOf(const QVector<Block> &blocks, const LineCosts &line);

/** The part of a block's units that a point of the same memory area touches; count 0 when none. */
Span unitsOf(const Block &block, const Point &point);

/**
 * Monitors the points and walks the driver through one cycle without a line: every request gets a
 * reply whose words are 0. The blocks come in the order of sending, without tags.
 */
QVector<Block> walkCycle(const Driver &driver, Session &session, const Identity &identity,
                         const QVector<Point> &points);

/** What it costs to read every point by a request of its own. */
CycleCosts costsOneByOne(const Driver &driver, Session &session, const Identity &identity,
                         const QVector<Point> &points, const LineCosts &line);

struct BlockLimit
{
    int words = 0;
    CycleCosts costs;
};

/**
 * Tries every block limit and returns the lowest of those with the shortest cycle; `best` itself
 * when none makes a shorter one. The session is left with another block limit than it had.
 */
BlockLimit bestBlockLimit(const Driver &driver, Session &session, const Identity &identity,
                          const QVector<Point> &points, const LineCosts &line, BlockLimit best);

/** Fills in what the blocks read of the tags, and what they read between them. */
void assignTags(QVector<Block> &blocks, const QVector<Tag> &tags);

}  // namespace host
