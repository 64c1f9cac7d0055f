// What is to be written down, and waits for its proof.
#pragma once

#include "host/watch/watched_values.h"

#include <QtCore/QSet>

#include <functional>

namespace host {

/** Values on their way to whoever writes them down: what is good goes when it is proven. */
class Unproven
{
public:
    /** Values to be written down, with the moment they stand for. */
    std::function<void(const QVector<WatchedValue> &values, LineTime at)> report;

    /** These have changed. One that is not good goes at once. */
    void change(const QVector<WatchedValue> &all, const QVector<int> &which, LineTime at);

    /** All of them, as of that time. */
    void sample(const QVector<WatchedValue> &all, LineTime at);

    /** All that waits is right. */
    void prove();

    /**
     * What waits and was read since then is not known to be right: samples have it as bad, changes
     * are told again when the value is read again.
     */
    void doubt(LineTime since, const QString &reason);

    /** Of the values that were just read, those whose change is to be told again. */
    QVector<int> toldAgain(const QVector<WatchedValue> &all, LineTime readAt);

    bool isEmpty() const { return m_waiting.isEmpty(); }

private:
    struct Waiting
    {
        QVector<int> which;  // empty: a sample of all
        QVector<WatchedValue> values;
        LineTime at;
    };

    QVector<Waiting> m_waiting;
    QSet<int> m_untold;
};

}  // namespace host
