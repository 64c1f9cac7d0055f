// Ctrl-C as a request to end, for commands that close with counts.
#ifndef TOLVANE_HOST_INTERRUPT_H
#define TOLVANE_HOST_INTERRUPT_H

namespace host {

/** From now on SIGINT and SIGTERM only set a flag; a second one ends the program at once. */
void catchInterrupts();

/** True once one of the signals has come. */
bool interrupted();

}  // namespace host

#endif
