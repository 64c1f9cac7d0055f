// tolvane-host demo: the tour against a simulated controller.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/output/failure.h"
#include "host/tour/tour.h"

namespace host {

int demoCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        "demo"_s,
        "A tour of the driver against a simulated controller, every step checked.\n"
        "Exit status 0 only if every result was right."_s);
    commandLine.read(arguments);
    QTextStream out(stdout);
    return takeTour(commandLine.driverPath(), out) ? AllRight : SomethingFailed;
}

}  // namespace host
