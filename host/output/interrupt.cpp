// The signal handler and its flag.
#include "host/output/interrupt.h"

#include <csignal>

namespace host {

namespace {

volatile std::sig_atomic_t signalCame = 0;

void noteSignal(int number)
{
    signalCame = 1;
    std::signal(number, SIG_DFL);
}

}  // namespace

void catchInterrupts()
{
    std::signal(SIGINT, noteSignal);
    std::signal(SIGTERM, noteSignal);
}

bool interrupted()
{
    return signalCame != 0;
}

}  // namespace host
