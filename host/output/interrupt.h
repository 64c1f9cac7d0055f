// Signals as requests: to end, for commands that close with counts, and to open logs again.
#pragma once

namespace host {

/**
 * From now on SIGINT and SIGTERM only set a flag. A second one ends the program at once, and so
 * does the first where the program has not ended soon, because somebody does not read what it
 * writes.
 */
void catchInterrupts();

/** True once one of the signals has come. */
bool interrupted();

/** From now on SIGHUP only sets a flag, unless it is ignored as under nohup. */
void catchHangUps();

/** True once after each SIGHUP. */
bool hungUp();

}  // namespace host
