// The bounded queue that writes and condition reads share.
#ifndef TOLVANE_REQUEST_QUEUE_H
#define TOLVANE_REQUEST_QUEUE_H

#include "../protocol.h"

/** Whether two items ask for the same range: station, register type, start and count. */
bool isSameRange(const VARIABLE &a, const VARIABLE &b);

/**
 * Queues an item behind the head, which may be in service and is never replaced. An item of the
 * same range takes the place of the one that waits already; in a full queue (QueueLimit items) the
 * last one is lost to the new one.
 */
void enqueueRequest(QList<VARIABLE> &queue, const VARIABLE &item);

#endif
