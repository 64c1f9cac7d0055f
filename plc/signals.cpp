// Signals by way of a signalfd, so that nothing runs in a signal handler.
#include "plc/signals.h"

#include <QtCore/QSocketNotifier>

#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace plc {

Signals::Signals(std::initializer_list<int> numbers)
{
    sigset_t set;
    sigemptyset(&set);
    for (int number : numbers)
        sigaddset(&set, number);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    m_descriptor = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (m_descriptor < 0)
        qFatal("no signals: signalfd failed");
    const auto notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info;
        while (read(m_descriptor, &info, sizeof info) == sizeof info)
            emit arrived(int(info.ssi_signo));
    });
}

}  // namespace plc
