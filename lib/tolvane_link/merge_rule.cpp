// When two spans may share one read request.
#include "tolvane_link.h"

int judgeAddrMerge(const AddressSpan &block, const AddressSpan &next, int mode)
{
    enum { Joined = 0, Separate = 1 };

    if (block.stationNo != next.stationNo || block.regNumber != next.regNumber)
        return Separate;
    const qint64 gap = qint64(next.startAddr) - (qint64(block.startAddr) + block.count);
    if (gap > (mode == StrictTest ? 0 : driver.propItem4))
        return Separate;
    // A read of contacts returns whole words from the first contact's word on, so only requests
    // for the same first contact fit together.
    if (driver.registerTypes.at(block.regNumber).unitKind == BitUnit &&
        block.startAddr != next.startAddr)
        return Separate;
    return Joined;
}
