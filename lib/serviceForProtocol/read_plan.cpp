// Read planning: sorting and merging.
#include "read_plan.h"

#include "address.h"

#include <algorithm>

namespace {

/** Orders positions by the weights they stand for. */
struct LighterFirst
{
    const QVector<quint32> &weights;
    bool operator()(int a, int b) const { return weights.at(a) < weights.at(b); }
};

/** How far a block may reach when it is joined. */
int blockLimit(const AddressSpan &block, int mode)
{
    if (mode != RecipeMode)
        return driver.propItem4;
    const UnitKind kind = driver.registerTypes.at(block.regNumber).unitKind;
    return qMin(driver.propItem4, recipeUnitsPerFrame(kind));
}

/** One walk over spans in order: each is joined to the block before it or opens the next. */
QVector<AddressSpan> mergePass(const QVector<AddressSpan> &spans, MergeTest test, int mode)
{
    QVector<AddressSpan> blocks;
    for (int i = 0; i < spans.size(); ++i) {
        const AddressSpan &next = spans.at(i);
        if (!blocks.isEmpty()) {
            AddressSpan &block = blocks.last();
            const qint64 extent = qint64(next.startAddr) + next.count - block.startAddr;
            if (judgeAddrMerge(block, next, test) == 0 && extent <= blockLimit(block, mode)) {
                block.count = qMax(block.count, int(extent));
                continue;
            }
        }
        blocks.append(next);
        if (mode == RecipeMode)
            driver.rcpGroupStarts.append(i);
    }
    return blocks;
}

quint32 weightOf(const AddressSpan &span)
{
    return addressWeight(span.stationNo, span.regNumber, span.startAddr);
}

}  // namespace

AddressSpan wordSpan(const AddressSpan &bits)
{
    const RegisterType &type = driver.registerTypes.at(bits.regNumber);
    const AddressSpan words = {bits.stationNo, type.wordType, wordOfBit(bits.startAddr),
                               wordsOfBits(bits.startAddr, bits.count), bits.bufIndex};
    return words;
}

void addrMerge(QVector<AddressSpan> &spans, int mode)
{
    if (mode == RecipeMode) {
        spans = mergePass(spans, StrictTest, mode);
        return;
    }
    for (int i = 0; i < spans.size(); ++i) {
        if (driver.registerTypes.at(spans.at(i).regNumber).unitKind == WordBitUnit)
            spans[i] = wordSpan(spans.at(i));
    }
    spans = mergePass(inWeightOrder(spans, weightOf), StrictTest, mode);
    spans = mergePass(spans, GapTolerantTest, mode);
}

QVector<int> orderByWeight(const QVector<quint32> &weights)
{
    QVector<int> order(weights.size());
    for (int i = 0; i < order.size(); ++i)
        order[i] = i;
    const LighterFirst lighterFirst = {weights};
    std::stable_sort(order.begin(), order.end(), lighterFirst);
    return order;
}

int recipeUnitsPerFrame(UnitKind kind)
{
    // A read of contacts asks for as many words as contacts, so those end where words do.
    return kind == WordBitUnit ? MaxBitsPerWrite : MaxWordsPerFrame;
}
