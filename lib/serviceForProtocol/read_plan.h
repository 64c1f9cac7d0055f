// Read planning: the fewest read blocks that cover a set of addresses, and the one rule by which
// long runs are cut.
#ifndef TOLVANE_READ_PLAN_H
#define TOLVANE_READ_PLAN_H

#include <algorithm>

#include "../tolvane_link/tolvane_link.h"

/** What addrMerge() is asked for. */
enum MergeMode { MonitorMode = 1, RecipeMode = 2 };

/**
 * Merges spans into blocks, in order, of at most the block limit; a span longer than that stays
 * one block.
 *
 * MonitorMode: spans are taken as they are read (bits as words), put in weight order, and those
 * that overlap, touch or lie no further apart than the block limit are joined.
 * RecipeMode: spans keep their order and type; only those that overlap or touch are joined. Blocks
 * count the entries of the spans they join.
 */
QVector<AddressSpan> addrMerge(const QVector<AddressSpan> &spans, int mode);

/** How many units of a type one recipe block may span, so that it can be read and written. */
int recipeUnitsPerFrame(const RegisterType &type);

/** The records in the order of weightOf(record); those of equal weight keep their order. */
template <typename Record, typename Weight>
QVector<Record> inWeightOrder(const QVector<Record> &records, Weight weightOf)
{
    QVector<quint64> order;  // weight and, below it, position
    order.reserve(records.size());
    for (int i = 0; i < records.size(); ++i)
        order.append(quint64(weightOf(records.at(i))) << 32 | quint32(i));
    std::sort(order.begin(), order.end());
    QVector<Record> sorted;
    sorted.reserve(records.size());
    for (int i = 0; i < order.size(); ++i)
        sorted.append(records.at(int(order.at(i) & 0xFFFFFFFF)));
    return sorted;
}

/**
 * Cuts a span into pieces of maxLen, the last one taking the remainder, and calls piece(part,
 * offset) for each in ascending order. Left out are the pieces that begin where no request can.
 */
template <typename Piece>
void groupingKey(const AddressSpan &span, int maxLen, Piece piece)
{
    AddressSpan part = span;
    for (int offset = 0; offset < span.count; offset += part.count) {
        part.startAddr = addrPlus(span.startAddr, offset);
        part.count = qMin(maxLen, span.count - offset);
        if (canBegin(part))
            piece(part, offset);
    }
}

#endif
