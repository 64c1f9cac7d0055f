// The values that are watched: what the polling brings of them, when they changed and how.
#ifndef TOLVANE_HOST_WATCHED_VALUES_H
#define TOLVANE_HOST_WATCHED_VALUES_H

#include "host/loop.h"
#include "host/session.h"
#include "host/tags.h"

#include <QtCore/QElapsedTimer>

namespace host {

struct WatchedValue
{
    QString name;  ///< the tag's own, with an index where it has several values; or the address
    QString address;
    QString text;  ///< empty until the value has been read
    int changes = 0;
    QElapsedTimer sinceChange;  ///< started when the value is first read
    QVector<double> trend;      ///< the latest samples, oldest first
};

class WatchedValues
{
public:
    /** Session and driver stay the caller's. */
    WatchedValues(const Driver &driver, const Session &session, const QVector<Tag> &tags);

    const QVector<WatchedValue> &all() const { return m_values; }

    /** Takes over what an exchange read. Returns the values that are new or changed. */
    QVector<int> update(const Exchange &exchange);

    /** Adds the present values to the trends; the oldest samples go. */
    void sample();

private:
    struct Watched
    {
        Tag tag;
        QVector<int> units;  // as last read; -1: not read yet
        int firstValue;      // position in m_values
    };
    void take(const QString &text, int value, QVector<int> &changed);
    void update(Watched &watched, const VARIABLE &item, QVector<int> &changed);

    const Session &m_session;
    QVector<Watched> m_watched;
    QVector<WatchedValue> m_values;
};

}  // namespace host

#endif
