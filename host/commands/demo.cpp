// tolvane-host demo: the tour against a simulated controller.
#include "host/commands/commands.h"
#include "host/output/failure.h"
#include "host/tour/tour.h"

namespace host {

int demoCommand(const CommandLine &commandLine)
{
    QTextStream out(stdout);
    return takeTour(commandLine.driverPath(), out) ? AllRight : SomethingFailed;
}

}  // namespace host
