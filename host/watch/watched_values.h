// The values that are watched: what the polling brings of them, how good they are, and since when.
#pragma once

#include "host/driver/session.h"
#include "host/watch/coverage.h"
#include "host/watch/poll_pace.h"

#include <optional>

namespace host {

enum class Quality {
    Good,   ///< read, and read again in time
    Stale,  ///< not read for three poll cycles
    Bad     ///< never read, the last request for it was given up, or the line is lost
};

/** "good", "stale" or "bad". */
QString qualityText(Quality quality);

struct WatchedValue
{
    int tag = 0;   ///< place in the list of tags
    QString name;  ///< the tag's own, with an index where it has several values; or the address
    QString address;
    int number = 0;  ///< the driver's address number
    int stationNo = 0;
    bool hasOwnName = true;  ///< false: name is the address
    QString text;            ///< as last read, however long ago; empty until then
    Quality quality = Quality::Bad;
    QString reason;  ///< why it is not good; else empty
    int changes = 0;
    std::optional<LineTime> readAt;     ///< the last good read
    std::optional<LineTime> changedAt;  ///< the first read or a later change
    QVector<double> trend;              ///< the latest samples, oldest first
};

class WatchedValues
{
public:
    /** Session and driver stay the caller's. */
    WatchedValues(const Driver &driver, const Session &session, const QVector<Tag> &tags);

    const QVector<WatchedValue> &all() const { return m_values; }

    // These return the values whose text or quality is another now, or known for the first time.

    /** A read of the block ended well. */
    QVector<int> read(const Point &block, LineTime now);

    /** A read of the block was given up. */
    QVector<int> giveUp(const Point &block, const QString &reason);

    /** What was read since then may be another request's. */
    QVector<int> doubt(LineTime since, const QString &reason);

    /** The line is lost, and every value with it. */
    QVector<int> loseLine();

    /** Time has passed: values that were not read for so long are stale. */
    QVector<int> age(LineTime limit, LineTime now);

    /** Which of the tags a block reads. */
    const QVector<Coverage::Covered> &readBy(const Point &block) { return m_coverage.of(block); }

    /** Adds the values that are not bad to the trends; the oldest samples go. */
    void sample();

private:
    struct Unit
    {
        int value = 0;
        LineTime readAt{0};
        QString failure;    // of the last request; empty after a good one
        bool isNew = true;  // since the value's text was made
    };
    struct Watched
    {
        Tag tag;
        QVector<Unit> units;
        int firstValue;  // position in m_values
        int step;        // units of one value
    };
    /** Works the values out that have one of the units; `changed` gets those that differ. */
    void judge(Watched &watched, Part part, LineTime now, QVector<int> &changed);
    static bool renew(Watched &watched, int start, WatchedValue &value, LineTime now);

    const Session &m_session;
    Coverage m_coverage;
    QVector<Watched> m_watched;
    QVector<WatchedValue> m_values;
};

}  // namespace host
