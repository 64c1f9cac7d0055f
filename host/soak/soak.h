// A panel's random day on a bad line, and the proof of what came of them.
#pragma once

#include "host/driver/session.h"
#include "host/exchange/loop.h"
#include "host/line/virtual_line.h"
#include "host/soak/memory_book.h"

#include <QtCore/QMap>
#include <QtCore/QSet>

#include <random>

namespace host {

/**
 * Reads and writes at random through the driver and keeps book of what the controller must hold.
 * What the book is compared with does not come from the driver: the words of the replies as they
 * were on the line, and the controller's own memory.
 */
class Soak
{
public:
    struct Counts
    {
        qint64 requests = 0;  ///< sent, those sent again included
        int writes = 0;
        int writesAcknowledged = 0;
        int writesGivenUp = 0;
        int writesReplaced = 0;  ///< by a newer one of the same range, while they waited
        int registrations = 0;
        int conditionReads = 0;
        int conditionReadsFailed = 0;
        int recipesWritten = 0;
        int recipesRead = 0;
        int recipesFailed = 0;
        qint64 wordsCompared = 0;   ///< of replies, with the books
        qint64 valuesCompared = 0;  ///< of what the driver shows
    };

    /** All stay the caller's; the line's controller, which does not move, gets random words. */
    Soak(const Driver &driver, VirtualLine &line, const LoopSettings &settings, quint32 seed);

    /**
     * Does as a panel does until so many requests were sent. Throws Failure when the driver has
     * nothing to send.
     */
    void run(qint64 requests);

    /**
     * Heals the line, lets the driver finish, and reads everything once more. Then compares the
     * controller's memory with the books and with what the driver shows.
     */
    void judge();

    const QVector<Finding> &findings() const { return m_findings; }
    const Counts &counts() const { return m_counts; }
    const LoopCounters &line() const { return m_loop.counters(); }

    /** Of the line's time. */
    double seconds() const { return double(m_line.now().count()) * 1e-9; }

private:
    enum { FirstWriteKind = 1000 };  // smaller ones have meanings of their own

    struct Shown
    {
        Point point;
        QVector<int> values;
    };
    struct Recipe
    {
        QVector<Shown> entries;
        bool written = false;  // to the controller
        bool failed = false;
    };

    int dice(int sides) { return int(m_random() % static_cast<unsigned>(sides)); }
    Point anyPoint(int area);
    QVector<int> anyValues(const Point &point);

    void step();
    void monitor();
    void write();
    void readOnCondition(const Point &point);
    void transferRecipe(bool write);
    void exchange();
    void settle();

    void book(const Exchange &exchange);
    void endWrite(const Exchange &exchange);
    bool isWriting(const Point &point) const;
    void bookRecipe(bool acknowledged);
    void checkReply(const Exchange &exchange);
    void checkRecipe(const QVector<int> &firstUnits);
    void checkValues(const char *how, const Point &point, const QVector<int> &values);
    void conditionReadEnded(bool done);
    void report(Claim claim, const QString &text);
    void report(const QVector<Finding> &findings);
    static QString rangeText(const Point &point);
    QString nameOf(const Point &point, int index) const;

    const Driver &m_driver;
    VirtualLine &m_line;
    MemoryBook m_book;
    Session m_session;
    Loop m_loop;
    std::mt19937 m_random;
    Counts m_counts;

    QMap<int, Shown> m_writes;  // without an end yet, by kind, oldest first
    QVector<Point> m_monitored;
    int m_pollRequests = 0;  // of one cycle
    int m_polls = 0;         // replies to them
    int m_idle = 0;          // exchanges in a row that brought nothing to send
    bool m_inFlight = false;
    std::optional<Point> m_conditionRead;  // the outstanding one
    bool m_undisturbed = false;            // nobody has written to it meanwhile
    std::optional<Recipe> m_recipe;        // under way
    Point m_lastWritten;

    QVector<Shown> m_shown;  // by the driver, in the end
    QVector<Finding> m_findings;
    QSet<QString> m_reported;
};

}  // namespace host
