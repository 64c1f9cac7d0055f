// Export: the addresses of the recipe.
#include "../address.h"
#include "../read_plan.h"

namespace {

/** Beyond this many 16-bit units no recipe buffer can reach on a 32-bit machine. */
enum { MaxBufferUnits = 0x3FFFFFFF };

quint32 weightOf(const _RCP_VAR_PRO &entry)
{
    return getRegAddressWeight(entry.stationNo, entry.regName, entry.startAddr);
}

bool isKept(const _RCP_VAR_PRO &entry)
{
    return entry.ownerKey == driver.propItem0 && getIndexFromRegName(entry.regName) >= 0 &&
           entry.count >= 1 && entry.bufIndex >= 0 &&
           qint64(entry.bufIndex) + entry.count <= MaxBufferUnits;
}

}  // namespace

int intf_setRcpAddress(const QVector<_RCP_VAR_PRO> &entries)
{
    ++driver.rcpRegistration;
    driver.rcpEntries.clear();
    for (int i = 0; i < entries.size(); ++i) {
        if (isKept(entries.at(i)))
            driver.rcpEntries.append(entries.at(i));
    }
    driver.rcpRefused = driver.rcpEntries.isEmpty();
    if (driver.rcpRefused)
        return 0;

    driver.rcpEntries = inWeightOrder(driver.rcpEntries, weightOf);
    QVector<AddressSpan> spans;
    spans.reserve(driver.rcpEntries.size());
    for (int i = 0; i < driver.rcpEntries.size(); ++i) {
        const _RCP_VAR_PRO &entry = driver.rcpEntries.at(i);
        const AddressSpan span = {entry.stationNo, getIndexFromRegName(entry.regName),
                                  entry.startAddr, entry.count, entry.bufIndex};
        spans.append(span);
    }
    driver.rcpGroupStarts.clear();
    addrMerge(spans, RecipeMode);

    // An entry longer than a frame becomes several blocks, which share it.
    const QList<int> mergedStarts = driver.rcpGroupStarts;
    driver.rcpGroupStarts.clear();
    driver.rcpBlocks.clear();
    for (int i = 0; i < spans.size(); ++i) {
        const AddressSpan &span = spans.at(i);
        const RegisterType &type = driver.registerTypes.at(span.regNumber);
        groupingKey(span.count, recipeUnitsPerFrame(type.unitKind), [&](int offset, int length) {
            _RCP_VAR_PRO block;
            block.stationNo = span.stationNo;
            block.regName = REG_LIST[span.regNumber];
            block.startAddr = addrPlus(span.startAddr, offset);
            block.count = length;
            block.bufIndex = addrPlus(span.bufIndex, offset);
            driver.rcpBlocks.append(block);
            driver.rcpGroupStarts.append(mergedStarts.at(i));
        });
    }
    return int(driver.rcpEntries.size());
}
