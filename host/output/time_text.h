// Points in time as logs, JSON and traces write them.
#pragma once

#include <QtCore/QDateTime>

namespace host {

enum class Zone {
    Utc,   ///< "2026-11-22T22:41:05.123Z"
    Local  ///< "2026-11-22T23:41:05.123+01:00"
};

/** ISO 8601 with milliseconds, never without its zone. */
inline QString timeText(const QDateTime &time, Zone zone)
{
    if (zone == Zone::Utc)
        return time.toUTC().toString(Qt::ISODateWithMs);
    const QDateTime local = time.toLocalTime();
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

}  // namespace host
