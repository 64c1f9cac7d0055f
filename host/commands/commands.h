// The commands of tolvane-host: the options in, the rooms below do the work. Each returns the exit
// status; bad input and failures are thrown as Failure.
#pragma once

#include "host/commands/command_line.h"

namespace host {

int demoCommand(const CommandLine &commandLine);
int infoCommand(const CommandLine &commandLine);
int planCommand(const CommandLine &commandLine);
int explainCommand(const CommandLine &commandLine);
int checkCommand(const CommandLine &commandLine);
int soakCommand(const CommandLine &commandLine);
int readCommand(const CommandLine &commandLine);
int recipeCommand(const CommandLine &commandLine);
int watchCommand(const CommandLine &commandLine);
int writeCommand(const CommandLine &commandLine);

}  // namespace host
