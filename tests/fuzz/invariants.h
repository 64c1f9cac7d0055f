// What must hold of the driver's state whatever the wire and the host do, and replies to fuzz with.
#ifndef TOLVANE_FUZZ_INVARIANTS_H
#define TOLVANE_FUZZ_INVARIANTS_H

#include "protocol.h"

/** Ends the process with a message when the condition does not hold. */
void require(bool condition, const char *what);

/** The queues' lengths. */
void checkQueues();

/** A frame on offer: length, control bytes, checksum. */
void checkFrame(const FRAME_PRO &frame);

/** At most one data area a key: the look-up finds each at its place and appends nothing. */
void checkDataAreas();

/** With nothing left to write, no data area shows a written value unless a mark is outstanding. */
void checkWritesSettled();

/** Puts the right checksum and the control bytes around `body`. */
QByteArray framedReply(const QByteArray &body);

/** A key with the bit mark that belongs to its type. */
KEY_ADDRESS keyOf(const QString &regName, int startAddr, int count);

_RCP_VAR_PRO entryOf(const QString &regName, int startAddr, int count, int bufIndex);

#endif
