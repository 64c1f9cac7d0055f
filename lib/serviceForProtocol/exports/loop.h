// The communication loop's state, as far as others may touch it.
#ifndef TOLVANE_LOOP_H
#define TOLVANE_LOOP_H

#include "../../protocol.h"

/** Forgets the item in flight, its tries and whose turn it is. */
void restartLoop();

#endif
