// A long random day of a panel on a bad line: it monitors, writes, reads on condition and transfers
// recipes while requests and replies get lost or damaged. Then the line heals, and the panel's
// books must balance with the controller's memory.
#ifndef TOLVANE_TESTS_EXCHANGE_DAY_H
#define TOLVANE_TESTS_EXCHANGE_DAY_H

#include <QMap>
#include <random>

#include "bench.h"

/** A panel with its books, the line, and the controller at the other end. */
class Day
{
public:
    explicit Day(quint32 seed);

    /** Something that panel and controller may do, then an exchange. */
    void go();
    /** No more faults: goes on until all queues are served and everything was polled again. */
    void heal();
    /** What does not balance after heal(); empty when all is well. */
    QStringList discrepancies();

    struct Counts
    {
        int pushed = 0, pulled = 0, announced = 0, retries = 0, givenUp = 0;
    } counts;

private:
    struct Write
    {
        Range range;
        QByteArray values;
    };

    int dice(int sides) { return int(random_() % unsigned(sides)); }
    QByteArray randomValues(const Range &range);
    Range anyRange(int area);
    void write();
    void monitor();
    void move();
    void recipe(bool push);
    QByteArray throughTheLine();
    int exchange();
    void book(int result);
    void settle(const Range &range, const QByteArray &values, bool acknowledged);

    std::mt19937 random_;
    int limit_;  ///< block limit in words
    Bench bench_;
    plc::Memory expected_;     ///< the controller's memory by the panel's books
    QVector<Write> writes_;    ///< all that were made; their numbers travel as the kinds of items
    QMap<QString, int> owed_;  ///< for each piece of a write not settled yet, the latest such write
    QVector<Range> monitored_;
    QMap<QString, Range> watched_;        ///< points that only the controller changes, by callback
    QMap<QString, QByteArray> reported_;  ///< their values, read when a change was reported
    int requests_ = 0;                    ///< requests of a poll cycle
    int polls_ = 0;                       ///< poll requests since the last of another kind
    bool inFlight_ = false;               ///< the item that was sent last is not finished
    bool inRecipe_ = false;
    bool badLine_ = true;
};

#endif
