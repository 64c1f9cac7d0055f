// A panel's random day on a bad line, and the proof of what came of them.
#pragma once

#include "host/driver/session.h"
#include "host/exchange/loop.h"
#include "host/soak/write_ledger.h"

#include <QtCore/QSet>

#include <optional>
#include <random>

namespace host {

/**
 * Reads and writes at random through the driver and keeps book of what the controller must hold.
 * What the book is compared with does not come from the driver: the words of the replies as they
 * were on the line, and in the end the controller's own memory.
 */
class Soak
{
public:
    struct Counts
    {
        qint64 requests = 0;  ///< sent, those sent again included
        int registrations = 0;
        int conditionReads = 0;
        int conditionReadsFailed = 0;
        int recipesWritten = 0;
        int recipesRead = 0;
        int recipesFailed = 0;
        qint64 wordsCompared = 0;   ///< of replies, with the books
        qint64 valuesCompared = 0;  ///< of what the driver shows
    };

    /** All stay the caller's. start: what the controller's memory holds. */
    Soak(const Driver &driver, const Identity &identity, Line &line, const LoopSettings &settings,
         const MemoryImage &start, quint32 seed);

    /** A memory to start with: random words where the soak writes, and around. */
    static MemoryImage startImage(quint32 seed);

    /** The words, bits and contacts that it writes, and some around, for readImage(). */
    static QVector<Point> places();

    /**
     * Does as a panel does until so many requests were sent. progress is called now and then, and
     * at the end. Throws Failure when the line is lost or the driver has nothing to send.
     */
    void run(qint64 requests, const std::function<void(qint64 requestsSent)> &progress);

    /** On a line that is good again: lets the driver finish, and reads everything once more. */
    void settle();

    /** Compares the controller's memory with the books and with what the driver shows. */
    void judge(const MemoryImage &memory);

    /** For reading the memory back behind settle(). */
    Session &session() { return m_session; }

    const QVector<Finding> &findings() const { return m_findings; }
    const Counts &counts() const { return m_counts; }
    const WriteLedger::Counts &writes() const { return m_ledger.counts(); }
    const LoopCounters &line() const { return m_loop.counters(); }

    /** Of the line's time since the beginning. */
    double seconds() const { return double((m_line.now() - m_start).count()) * 1e-9; }

private:
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
        int acknowledged = 0;  // values
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

    void book(const Exchange &exchange);
    void bookRecipe(const Exchange &exchange);
    void checkReply(const Exchange &exchange);
    void checkRecipe(const QVector<int> &firstUnits);
    void checkValues(const char *how, const Point &point, const QVector<int> &values);
    void conditionReadEnded(bool done);
    void report(const Finding &finding);
    QString nameOf(const Point &point, int index) const;

    const Driver &m_driver;
    const Identity &m_identity;
    const Line &m_line;
    const LineTime m_start;
    MemoryModel m_model;
    WriteLedger m_ledger;
    Session m_session;
    Loop m_loop;
    std::mt19937 m_random;
    Counts m_counts;

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
