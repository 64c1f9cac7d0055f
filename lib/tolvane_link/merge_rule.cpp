// When two spans may share one read request.
#include "tolvane_link.h"

int judgeAddrMerge(const AddressSpan &block, const AddressSpan &next, int mode)
{
    enum { Joined = 0, Separate = 1 };

    if (block.stationNo != next.stationNo || block.regNumber != next.regNumber)
        return Separate;
    // Weights wrap, so a span that starts lower may follow; it covers nothing of the block's.
    if (next.startAddr < block.startAddr)
        return Separate;
    const qint64 gap = qint64(next.startAddr) - (qint64(block.startAddr) + block.count);
    if (gap > (mode == StrictTest ? 0 : driver.propItem4))
        return Separate;
    // Contacts are read from the requested one on; that is how this driver asks for them.
    if (driver.registerTypes.at(block.regNumber).unitKind == BitUnit &&
        block.startAddr != next.startAddr)
        return Separate;
    return Joined;
}
