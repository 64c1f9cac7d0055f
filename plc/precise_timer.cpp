// The timer as a file descriptor: Qt's own timers count whole milliseconds.
#include "plc/precise_timer.h"

#include <QtCore/QSocketNotifier>

#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

namespace plc {

namespace {

constexpr qint64 NsPerSecond = 1000000000;

}  // namespace

PreciseTimer::PreciseTimer() : m_timer(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC))
{
    if (m_timer < 0)
        qFatal("no timer: timerfd_create failed");
    const auto notifier = new QSocketNotifier(m_timer, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        quint64 expirations = 0;
        if (read(m_timer, &expirations, sizeof expirations) == sizeof expirations)
            emit fired();
    });
}

PreciseTimer::~PreciseTimer()
{
    close(m_timer);
}

qint64 PreciseTimer::nowNs()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * NsPerSecond + now.tv_nsec;
}

void PreciseTimer::fireAt(qint64 ns)
{
    itimerspec setting = {};
    setting.it_value.tv_sec = time_t(ns / NsPerSecond);
    setting.it_value.tv_nsec = long(ns % NsPerSecond);
    timerfd_settime(m_timer, TFD_TIMER_ABSTIME, &setting, nullptr);
}

}  // namespace plc
