// Keeps changes and samples until they are proven.
#include "host/watch/unproven.h"

namespace host {

void Unproven::change(const QVector<WatchedValue> &all, const QVector<int> &which, LineTime at)
{
    Waiting waiting{{}, {}, at};
    QVector<WatchedValue> atOnce;
    for (const int index : which) {
        if (all[index].quality == Quality::Good) {
            waiting.which.append(index);
            waiting.values.append(all[index]);
            continue;
        }
        atOnce.append(all[index]);
        m_untold.remove(index);
        for (Waiting &before : m_waiting) {  // it would come behind what is newer
            const int place = int(before.which.indexOf(index));
            if (place >= 0) {
                before.which.removeAt(place);
                before.values.removeAt(place);
            }
        }
    }
    if (!atOnce.isEmpty())
        report(atOnce, at);
    if (!waiting.which.isEmpty())
        m_waiting.append(waiting);
}

void Unproven::sample(const QVector<WatchedValue> &all, LineTime at)
{
    m_waiting.append({{}, all, at});
}

void Unproven::prove()
{
    for (const Waiting &waiting : std::as_const(m_waiting))
        if (!waiting.values.isEmpty())
            report(waiting.values, waiting.at);
    m_waiting.clear();
}

void Unproven::doubt(LineTime since, const QString &reason)
{
    for (Waiting &waiting : m_waiting) {
        for (const int index : std::as_const(waiting.which))
            m_untold.insert(index);
        if (!waiting.which.isEmpty())
            waiting.values.clear();
        for (WatchedValue &value : waiting.values) {
            if (value.quality == Quality::Bad || *value.readAt < since)
                continue;
            value.quality = Quality::Bad;
            value.reason = reason;
        }
    }
    prove();
}

QVector<int> Unproven::toldAgain(const QVector<WatchedValue> &all, LineTime readAt)
{
    QVector<int> again;
    for (const int index : std::as_const(m_untold))
        if (all[index].quality == Quality::Good && all[index].readAt == readAt)
            again.append(index);
    for (const int index : std::as_const(again))
        m_untold.remove(index);
    return again;
}

}  // namespace host
