// Read planning: the fewest read blocks that cover a set of addresses, and the one rule by which
// long runs are cut.
#ifndef TOLVANE_READ_PLAN_H
#define TOLVANE_READ_PLAN_H

#include "../protocol.h"

/** What addrMerge() is asked for. */
enum MergeMode { MonitorMode = 1, RecipeMode = 2 };

/** The same run in whole words of the word type over the same memory, for a run of "_bit" bits. */
AddressSpan wordSpan(const AddressSpan &bits);

/**
 * Merges spans into read blocks of at most driver.propItem4 units; a span longer than that stays
 * one block. The blocks replace the spans.
 *
 * MonitorMode: bit runs become words, spans are put in weight order, and those that overlap,
 * touch or lie at most propItem4 units apart are joined.
 * RecipeMode: spans keep their order and type; only those that overlap or touch are joined, and
 * not beyond what one frame carries. Appends to driver.rcpGroupStarts, for each block, the position
 * of its first span.
 */
void addrMerge(QVector<AddressSpan> &spans, int mode);

/** How many units of a type one recipe block may span, so that it can be read and written. */
int recipeUnitsPerFrame(UnitKind kind);

/** The positions of `weights` in ascending order; equal weights keep their order. */
QVector<int> orderByWeight(const QVector<quint32> &weights);

/** The records in the order of weightOf(record), which is asked once for each. */
template <typename Record, typename Weight>
QVector<Record> inWeightOrder(const QVector<Record> &records, Weight weightOf)
{
    QVector<quint32> weights;
    weights.reserve(records.size());
    for (int i = 0; i < records.size(); ++i)
        weights.append(weightOf(records.at(i)));
    const QVector<int> order = orderByWeight(weights);
    QVector<Record> sorted;
    sorted.reserve(records.size());
    for (int i = 0; i < order.size(); ++i)
        sorted.append(records.at(order.at(i)));
    return sorted;
}

/**
 * Cuts a run of `count` elements into pieces of maxLen (below 1 acts as 1), the last one taking
 * the remainder, and calls piece(offset, length) for each in ascending order.
 */
template <typename Piece>
void groupingKey(int count, int maxLen, Piece piece)
{
    const int limit = qMax(maxLen, 1);
    for (int offset = 0; offset < count;) {
        const int length = qMin(limit, count - offset);
        piece(offset, length);
        offset += length;
    }
}

#endif
