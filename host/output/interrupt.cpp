// The signal handlers and their flags.
#include "host/output/interrupt.h"

#include <csignal>

#include <sys/time.h>

namespace host {

namespace {

constexpr itimerval Patience{{0, 0}, {0, 800 * 1000}};

volatile std::sig_atomic_t endAsked = 0;  // the signal's number
volatile std::sig_atomic_t hangUpCame = 0;

void noteSignal(int number)
{
    std::signal(number, SIG_DFL);
    endAsked = number;
    ::setitimer(ITIMER_REAL, &Patience, nullptr);
}

// The program has not ended by itself: something holds it, such as a reader that does not read.
void endNow(int)
{
    ::raise(endAsked);
}

void noteHangUp(int)
{
    hangUpCame = 1;
}

}  // namespace

void catchInterrupts()
{
    std::signal(SIGALRM, endNow);
    std::signal(SIGINT, noteSignal);
    std::signal(SIGTERM, noteSignal);
}

bool interrupted()
{
    return endAsked != 0;
}

void catchHangUps()
{
    if (std::signal(SIGHUP, noteHangUp) == SIG_IGN)
        std::signal(SIGHUP, SIG_IGN);
}

bool hungUp()
{
    const bool came = hangUpCame != 0;
    hangUpCame = 0;
    return came;
}

}  // namespace host
