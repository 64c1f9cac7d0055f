// Points in time as logs, JSON and traces write them.
#ifndef TOLVANE_HOST_TIME_TEXT_H
#define TOLVANE_HOST_TIME_TEXT_H

#include <QtCore/QDateTime>

namespace host {

enum class Zone {
    Utc,   ///< "2026-11-22T22:41:05.123Z"
    Local  ///< "2026-11-22T23:41:05.123+01:00"
};

QString timeText(const QDateTime &time, Zone zone);

}  // namespace host

#endif
