// The signal handler and its flag.
#include "host/output/interrupt.h"

#include <csignal>

#include <unistd.h>

namespace host {

namespace {

constexpr unsigned PatienceSeconds = 1;

volatile std::sig_atomic_t signalCame = 0;

// The program has not ended by itself: something holds it, such as a reader that does not read.
void endNow(int)
{
    std::signal(signalCame, SIG_DFL);
    std::raise(signalCame);
}

void noteSignal(int number)
{
    signalCame = number;
    std::signal(number, SIG_DFL);
    ::alarm(PatienceSeconds);
}

}  // namespace

void catchInterrupts()
{
    std::signal(SIGINT, noteSignal);
    std::signal(SIGTERM, noteSignal);
    std::signal(SIGALRM, endNow);
}

bool interrupted()
{
    return signalCame != 0;
}

}  // namespace host
