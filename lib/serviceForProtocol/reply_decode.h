// Turning the data of a good read reply into values.
#ifndef TOLVANE_REPLY_DECODE_H
#define TOLVANE_REPLY_DECODE_H

#include "../protocol.h"

/**
 * Takes the good read reply to the head of driver.frameList: values go into the cache and, for a
 * recipe read, into the recipe buffer; the read step of a write of several bits completes the
 * write frame behind it instead. The frame stays. Always returns 0.
 */
int dealReadFrameReturnSaveData(const QByteArray &reply);

/** Stores the readCount units that the item's reply covers, in ascending order. */
void analyzeFrameOfVal(const QByteArray &reply, int readCount, int dataStart, const VARIABLE &var);

#endif
