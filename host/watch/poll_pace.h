// The pace of the polling: how long a cycle takes, and when the next one may begin.
#pragma once

#include "host/line/line.h"

#include <algorithm>

namespace host {

class PollPace
{
public:
    /** interval: a cycle begins no sooner than so long after the one before; 0: no limit. */
    explicit PollPace(LineTime interval) : m_interval(interval) {}

    /** Other points were registered: a cycle of so many requests begins. */
    void start(int requests, LineTime now)
    {
        m_requests = requests;
        m_done = 0;
        m_begin = std::max(m_begin, now);
    }

    /** A request of the cycle has ended, well or given up. */
    void finish(LineTime now)
    {
        if (++m_done < m_requests)
            return;
        m_cycle = now - m_begin;
        m_done = 0;
        m_begin = std::max(now, m_begin + m_interval);
    }

    /** How long the next request has to wait; 0: it may go. */
    LineTime wait(LineTime now) const
    {
        return m_done > 0 ? LineTime(0) : std::max(LineTime(0), m_begin - now);
    }

    /** What the last whole cycle took, at least the interval; 0 before its end. */
    LineTime cycle() const
    {
        return m_cycle > LineTime(0) ? std::max(m_cycle, m_interval) : LineTime(0);
    }

private:
    LineTime m_interval;
    LineTime m_begin{0};
    LineTime m_cycle{0};
    int m_requests = 0;
    int m_done = 0;
};

}  // namespace host
