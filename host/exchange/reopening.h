// Opens a lost line again.
#pragma once

#include "host/line/line.h"

#include <functional>

namespace host {

class Reopening
{
public:
    /** The line must live as long; place is what messages call it. */
    Reopening(Line &line, const QString &place) : m_line(line), m_place(place) {}

    /** Called with the news that the line is lost, and that it is back; once each. */
    std::function<void(const QString &text)> say;

    /**
     * Returns true when the line is open. A lost one is opened again, at first after a second, then
     * after twice as long each time, up to 30 s; until then a moment passes at every call.
     */
    bool ready();

private:
    Line &m_line;
    QString m_place;
    LineTime m_wait{0};  // until the next try; 0: the line is not lost
    LineTime m_tryAt{0};
};

}  // namespace host
