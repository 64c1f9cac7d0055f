// The recipe: its registration (intf_setRcpAddress), its blocks, the steps of a transfer and the
// copy into the host's recipe buffer. Nobody else touches driver.recipe.
#ifndef TOLVANE_RECIPE_H
#define TOLVANE_RECIPE_H

#include "../protocol.h"

/**
 * The transfer that is to go on: RecipeWrite, RecipeRead or Idle. Requests that cannot be served,
 * without a recipe buffer or after a registration that kept no entry, are set back. When the host
 * asks for none, or has taken its request back, the next transfer begins at its first block.
 */
SendState nextTransfer();

/**
 * Fills `item` with the next block of the transfer, a RecipeWrite or RecipeRead. Returns false,
 * with the item unchanged, when the registration has no such block.
 */
bool takeRecipeBlock(SendState transfer, VARIABLE &item);

/**
 * Fills `var` from a block; its kind stays. withData not 0: a write item with the values from the
 * recipe buffer (words from consecutive units, bits each from the unit of its entry). Otherwise
 * the item that reads the block.
 */
void rcpAddrToVar(const AddressSpan &block, VARIABLE &var, int withData);

/**
 * Copies the values that a good reply brought into the recipe buffer, entry by entry, announcing
 * each unit to the host. Only for the block asked for last, and only while its registration stands;
 * stops when the host ends the exchange or registers another recipe meanwhile.
 */
void copyRecipeReply(const quint16 *values);

/** Moves the transfer on to its next block, or ends it and takes the host's request back. */
void finishRecipeBlock(SendState transfer, bool failed);

#endif
