// Ctrl-C as a request to end, for commands that close with counts.
#pragma once

namespace host {

/** From now on SIGINT and SIGTERM only set a flag; a second one ends the program at once. */
void catchInterrupts();

/** True once one of the signals has come. */
bool interrupted();

}  // namespace host
