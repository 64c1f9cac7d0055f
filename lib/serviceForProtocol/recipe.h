// Recipe blocks as request items, and where their values stand in the host's recipe buffer.
#ifndef TOLVANE_RECIPE_H
#define TOLVANE_RECIPE_H

#include "../tolvane_link/tolvane_link.h"

/**
 * Fills `var` from a block of driver.rcpBlocks; its kind stays. withData not 0: a write item with
 * the values from the recipe buffer (words from consecutive units, bits each from the unit of its
 * entry). Otherwise a read item; a run of "_bit" bits is read as the words that hold it.
 */
void rcpAddrToVar(int blockNumber, VARIABLE &var, int withData);

/**
 * Copies the values of a good reply to the block at driver.rcpIndex into the recipe buffer, entry
 * by entry, announcing each unit to the host. Stops when the host ends the exchange or registers
 * another recipe meanwhile.
 */
void copyRecipeReply(const ReplyWords &words);

#endif
