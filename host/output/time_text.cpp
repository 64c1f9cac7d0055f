// Writes ISO 8601 with milliseconds, never without its zone.
#include "host/output/time_text.h"

namespace host {

QString timeText(const QDateTime &time, Zone zone)
{
    if (zone == Zone::Utc)
        return time.toUTC().toString(Qt::ISODateWithMs);
    const QDateTime local = time.toLocalTime();
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

}  // namespace host
