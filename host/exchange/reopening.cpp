// Tries again, less and less often.
#include "host/exchange/reopening.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::chrono::milliseconds Moment(100);
constexpr std::chrono::seconds FirstWait(1);
constexpr std::chrono::seconds LongestWait(30);

}  // namespace

bool Reopening::ready()
{
    if (m_line.isOpen())
        return true;
    if (m_wait.count() == 0) {
        say("lost %1 (%2); trying again"_s.arg(m_place, m_line.errorText()));
        m_wait = FirstWait;
        m_tryAt = m_line.now() + m_wait;
    }
    if (m_line.now() < m_tryAt) {
        m_line.pause(Moment);
        return false;
    }
    if (!m_line.open()) {
        m_wait = std::min<LineTime>(2 * m_wait, LongestWait);
        m_tryAt = m_line.now() + m_wait;
        return false;
    }
    m_wait = LineTime(0);
    say("%1 is back"_s.arg(m_place));
    return true;
}

}  // namespace host
