// The communication loop's state, as far as others may touch it.
#ifndef TOLVANE_LOOP_H
#define TOLVANE_LOOP_H

#include "../../protocol.h"

/** Empties the queues and the cyclic reads; forgets the item in flight and whose turn it is. */
void restartLoop();

#endif
