// The bounded queue that writes and condition reads share.
#include "request_queue.h"

bool isSameRange(const VARIABLE &a, const VARIABLE &b)
{
    return a.startAddr == b.startAddr && a.count == b.count && a.stationNo == b.stationNo &&
           a.regName == b.regName;
}

void enqueueRequest(QList<VARIABLE> &queue, const VARIABLE &item)
{
    for (int i = int(queue.size()) - 1; i >= 1; --i) {
        if (isSameRange(queue.at(i), item)) {
            queue[i] = item;
            return;
        }
    }
    if (queue.size() < QueueLimit)
        queue.append(item);
    else
        queue[QueueLimit - 1] = item;
}
