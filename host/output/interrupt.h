// Ctrl-C as a request to end, for commands that close with counts.
#pragma once

namespace host {

/**
 * From now on SIGINT and SIGTERM only set a flag; a second one ends the program at once, and the
 * first does where the program has not ended within a second.
 */
void catchInterrupts();

/** True once one of the signals has come. */
bool interrupted();

}  // namespace host
