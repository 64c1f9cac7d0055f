// Watching: what the exchanges of a polled line mean for the values, and when to poll what.
#pragma once

#include "host/exchange/loop.h"
#include "host/watch/set_aside.h"
#include "host/watch/statistics.h"
#include "host/watch/unproven.h"
#include "host/watch/watched_values.h"

namespace host {

struct WatchSettings
{
    LineTime poll{0};           ///< a cycle begins no sooner after the one before; 0: no limit
    LineTime every{0};          ///< report all values so often; 0: report changes
    LineTime shortestCycle{0};  ///< values are stale after three cycles, or three of these
    bool setAside = true;       ///< dead blocks are polled less often
    bool provable = true;       ///< false: all replies are alike long, so nothing waits for a proof
};

/** All times are the line's. */
class Watch
{
public:
    /** Driver and session stay the caller's. */
    Watch(const Driver &driver, Session &session, const QVector<Tag> &tags,
          const WatchSettings &settings);
    ~Watch() { m_session.conditionReadEnded = nullptr; }
    Watch(const Watch &) = delete;
    Watch &operator=(const Watch &) = delete;

    /** Values to be written down, with the moment they stand for; the good ones are proven. */
    std::function<void(const QVector<WatchedValue> &values, LineTime at)> report;
    /** Something the user should know. */
    std::function<void(const QString &text)> say;
    /** Asked for words, 1 or 2, whose read would prove what has come so far; 0: nothing to prove.
     */
    std::function<int()> wantedWords = [] { return 0; };
    /** Asked for a moment as it is written. */
    std::function<QString(LineTime)> momentText = [](LineTime) { return QString(); };

    /**
     * Polls for so long. step carries one exchange, and its observer calls take(); goOn is asked
     * between exchanges, and every 50 ms while there is nothing to poll: false ends it.
     */
    void run(Line &line, const std::function<Outcome()> &step, LineTime duration,
             const std::function<bool()> &goOn);

    /** An exchange has ended: to be called by the loop's observer. */
    void take(const Exchange &exchange, LineTime now);

    WatchedValues &values() { return m_values; }
    const Statistics &statistics() const { return m_statistics; }

    /** The tags without a good value, by reason: "no reply ...: level, flow"; empty when none. */
    QStringList notGood() const;

private:
    void pass(LineTime now);
    void loseLine(LineTime now);
    void takeProof(const StepGuard::Verdict &earlier, LineTime now);
    void askForProof(int words);
    void takeRead(const Exchange &exchange, LineTime now);
    void registerPoints(LineTime now);
    void sampleUntil(LineTime now);
    void reportChanges(const QVector<int> &which, LineTime now);
    QString tagsIn(const Point &block);

    const Driver &m_driver;
    Session &m_session;
    QVector<Tag> m_tags;
    WatchSettings m_settings;
    WatchedValues m_values;
    Unproven m_unproven;
    Statistics m_statistics;
    SetAside m_setAside;
    PollPace m_pace;
    LineTime m_nextSample{0};
    LineTime m_nextAging{0};
    bool m_registerAgain = false;
    bool m_inFlight = false;  // the driver offers the same request again
    bool m_proving = false;   // a read is queued for its length
    Point m_lastGood;
};

}  // namespace host
