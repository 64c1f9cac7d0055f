// Read planning: sorting and merging.
#include "read_plan.h"

#include "address.h"

namespace {

/** One walk over spans in order: each is joined to the block before it or opens the next. */
QVector<AddressSpan> mergePass(const QVector<AddressSpan> &spans, int widestGap)
{
    QVector<AddressSpan> blocks;
    for (int i = 0; i < spans.size(); ++i) {
        const AddressSpan &next = spans.at(i);
        if (!blocks.isEmpty()) {
            AddressSpan &block = blocks.last();
            const int extent = next.startAddr + next.count - block.startAddr;
            if (judgeAddrMerge(block, next, widestGap) == Joined &&
                extent <= driver.settings.mergeWords) {
                block.count = qMax(block.count, extent);
                block.entries += next.entries;
                continue;
            }
        }
        blocks.append(next);
    }
    return blocks;
}

/**
 * The spans as they are read, from the first piece on that can begin a request: what begins
 * elsewhere must not draw others into a block that is never read.
 */
QVector<AddressSpan> readableSpans(const QVector<AddressSpan> &spans)
{
    QVector<AddressSpan> readable;
    readable.reserve(spans.size());
    for (int i = 0; i < spans.size(); ++i) {
        AddressSpan span = readAs(spans.at(i), CyclicRead);
        const int piece = unitsPerRead(driver.registerTypes.at(span.regNumber), CyclicRead);
        while (span.count > 0 && !canBegin(span)) {
            span.startAddr = addrPlus(span.startAddr, piece);
            span.count -= piece;
        }
        if (span.count > 0)
            readable.append(span);
    }
    return readable;
}

quint32 weightOf(const AddressSpan &span)
{
    return addressWeight(span.stationNo, span.regNumber, span.startAddr);
}

}  // namespace

QVector<AddressSpan> addrMerge(const QVector<AddressSpan> &spans, int mode)
{
    if (mode == RecipeMode)
        return mergePass(spans, 0);
    const QVector<AddressSpan> ordered = inWeightOrder(readableSpans(spans), weightOf);
    // Neighbours first, so that no gap is bridged where a neighbour still fits.
    return mergePass(mergePass(ordered, 0), driver.settings.mergeWords);
}

int recipeUnitsPerFrame(const RegisterType &type)
{
    return qMin(unitsPerRead(type, RecipeRead), unitsPerWrite(type));
}
