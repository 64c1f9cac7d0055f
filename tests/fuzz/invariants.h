// What must hold of the driver's state whatever the wire and the host do.
#ifndef TOLVANE_FUZZ_INVARIANTS_H
#define TOLVANE_FUZZ_INVARIANTS_H

#include "protocol.h"

/** Ends the process with a message when the condition does not hold. */
void require(bool condition, const char *what);

/** Queues, frames and checksums. */
void checkQueuesAndFrames();

/** At most one data area a key, and the index behind them agrees with the list. */
void checkDataAreas();

/** With nothing left to write, no data area shows a written value unless a mark is outstanding. */
void checkWritesSettled();

/** A well-formed reply to the frame, its data taken from `data` (repeated, or "0" when empty). */
QByteArray goodReply(const FRAME_PRO &frame, const QByteArray &data);

/** Puts the right checksum and the control bytes around `body`. */
QByteArray framedReply(const QByteArray &body);

#endif
