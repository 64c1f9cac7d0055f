// Export: the addresses of the recipe.
#include "../address.h"
#include "../read_plan.h"

namespace {

/** Appends an entry to `entries`, cut to what a frame carries, each piece with its buffer place. */
void appendEntry(QVector<_RCP_VAR_PRO> &entries, const _RCP_VAR_PRO &entry, UnitKind kind)
{
    groupingKey(entry.count, recipeUnitsPerFrame(kind), [&](int offset, int length) {
        _RCP_VAR_PRO piece = entry;
        piece.startAddr = addrPlus(entry.startAddr, offset);
        piece.bufIndex = addrPlus(entry.bufIndex, offset);
        piece.count = length;
        entries.append(piece);
    });
}

QVector<_RCP_VAR_PRO> inWeightOrder(const QVector<_RCP_VAR_PRO> &entries)
{
    QVector<quint32> weights;
    weights.reserve(entries.size());
    for (int i = 0; i < entries.size(); ++i) {
        const _RCP_VAR_PRO &entry = entries.at(i);
        weights.append(getRegAddressWeight(entry.stationNo, entry.regName, entry.startAddr));
    }
    const QVector<int> order = orderByWeight(weights);
    QVector<_RCP_VAR_PRO> sorted;
    sorted.reserve(entries.size());
    for (int i = 0; i < order.size(); ++i)
        sorted.append(entries.at(order.at(i)));
    return sorted;
}

}  // namespace

int intf_setRcpAddress(const QVector<_RCP_VAR_PRO> &entries)
{
    ++driver.rcpRegistration;
    int kept = 0;
    QVector<_RCP_VAR_PRO> pieces;
    for (int i = 0; i < entries.size(); ++i) {
        const _RCP_VAR_PRO &entry = entries.at(i);
        const RegisterType type = registerType(entry.regName);
        if (entry.ownerKey != driver.propItem0 || !type.isKnown() || entry.count < 1 ||
            entry.bufIndex < 0)
            continue;
        appendEntry(pieces, entry, type.unitKind);
        ++kept;
    }
    driver.rcpEntries = inWeightOrder(pieces);
    driver.rcpRefused = kept == 0;
    if (driver.rcpRefused)
        return 0;

    QVector<AddressSpan> spans;
    spans.reserve(driver.rcpEntries.size());
    for (int i = 0; i < driver.rcpEntries.size(); ++i) {
        const _RCP_VAR_PRO &entry = driver.rcpEntries.at(i);
        const AddressSpan span = {entry.stationNo, getIndexFromRegName(entry.regName),
                                  entry.startAddr, entry.count, entry.bufIndex};
        spans.append(span);
    }
    driver.rcpGroupStarts.clear();
    driver.rcpBlocks.clear();
    addrMerge(spans, RecipeMode);
    for (int i = 0; i < spans.size(); ++i) {
        const AddressSpan &span = spans.at(i);
        _RCP_VAR_PRO block;
        block.stationNo = span.stationNo;
        block.regName = REG_LIST[span.regNumber];
        block.startAddr = span.startAddr;
        block.count = span.count;
        block.bufIndex = span.bufIndex;
        driver.rcpBlocks.append(block);
    }
    return kept;
}
