// The recipe, from its registration to the last value copied.
#include "recipe.h"

#include <QtCore/QMutexLocker>

#include "address.h"
#include "read_plan.h"

namespace {

/** Beyond this many 16-bit units no recipe buffer can reach on a 32-bit machine. */
enum { MaxBufferUnits = 0x3FFFFFFF };

/** The span of the entry at `position`. */
AddressSpan spanOf(const _RCP_VAR_PRO &entry, int regNumber, int position)
{
    const AddressSpan span = {entry.stationNo, regNumber, entry.startAddr,
                              entry.count,     position,  1};
    return span;
}

bool isKept(const _RCP_VAR_PRO &entry, const RegisterType &type)
{
    return entry.ownerKey == driver.settings.propItem0 && type.isKnown() && entry.count >= 1 &&
           entry.bufIndex >= 0 && entry.bufIndex <= MaxBufferUnits - entry.count &&
           canBegin(spanOf(entry, type.number, 0));
}

quint32 weightOf(const _RCP_VAR_PRO &entry)
{
    return getRegAddressWeight(entry.stationNo, entry.regName, entry.startAddr);
}

/** The bytes of one 16-bit unit of the recipe buffer, low byte first. */
unsigned char *bufferUnit(int n)
{
    return driver.settings.rcpBuffer + 2 * qptrdiff(n);
}

/**
 * Calls step(position, n) for each value of the entries that lies in the block, in order: its
 * position counted from the block's first address, and its unit in the recipe buffer. Ends when
 * step returns false. Long entries serve several blocks, hence the cutting.
 */
template <typename Step>
void forEachRecipeValue(const AddressSpan &block, Step step)
{
    for (int e = block.firstEntry; e < block.firstEntry + block.entries; ++e) {
        const _RCP_VAR_PRO entry = driver.recipe.rcpEntries.at(e);
        const int offset = entry.startAddr - block.startAddr;
        const int end = qMin(entry.count, block.count - offset);
        for (int j = qMax(-offset, 0); j < end; ++j) {
            if (!step(offset + j, entry.bufIndex + j))
                return;
        }
    }
}

/** Looks at the host's request bytes; writing goes before reading. */
SendState requestedTransfer()
{
    QMutexLocker locker(driver.settings.hostMutex);
    if (driver.settings.hostShared[RecipeWriteRequest] == 1)
        return RecipeWrite;
    return driver.settings.hostShared[RecipeReadRequest] == 1 ? RecipeRead : Idle;
}

void refuseTransfers()
{
    QMutexLocker locker(driver.settings.hostMutex);
    driver.settings.hostShared[RecipeWriteRequest] = 0;
    driver.settings.hostShared[RecipeReadRequest] = 0;
}

}  // namespace

int intf_setRcpAddress(const QVector<_RCP_VAR_PRO> &entries)
{
    ++driver.recipe.registration;
    driver.recipe.rcpEntries.clear();
    for (int i = 0; i < entries.size(); ++i) {
        _RCP_VAR_PRO entry = entries.at(i);
        const RegisterType type = registerType(entry.regName);
        entry.count = coveredCount(entry.count);
        if (!isKept(entry, type))
            continue;
        entry.regName = REG_LIST[type.number];  // the host's text may lie over passing memory
        driver.recipe.rcpEntries.append(entry);
    }
    driver.recipe.isRefused = driver.recipe.rcpEntries.isEmpty();
    if (driver.recipe.isRefused)
        return 0;  // the blocks stay: one of them may be in flight

    driver.recipe.rcpEntries = inWeightOrder(driver.recipe.rcpEntries, weightOf);
    QVector<AddressSpan> spans;
    for (int i = 0; i < driver.recipe.rcpEntries.size(); ++i) {
        const _RCP_VAR_PRO &entry = driver.recipe.rcpEntries.at(i);
        spans.append(spanOf(entry, getIndexFromRegName(entry.regName), i));
    }
    driver.recipe.rcpBlocks.clear();
    const QVector<AddressSpan> merged = addrMerge(spans, RecipeMode);
    for (int i = 0; i < merged.size(); ++i) {
        const RegisterType &type = driver.registerTypes.at(merged.at(i).regNumber);
        groupingKey(merged.at(i), recipeUnitsPerFrame(type),
                    [](const AddressSpan &block, int) { driver.recipe.rcpBlocks.append(block); });
    }
    return int(driver.recipe.rcpEntries.size());
}

SendState nextTransfer()
{
    if (!driver.settings.hostShared)
        return Idle;
    const SendState requested = requestedTransfer();
    const bool isRefused =
        requested != Idle && (!driver.settings.rcpBuffer || driver.recipe.isRefused);
    if (requested != Idle && !isRefused)
        return requested;
    // A request that is refused, or that the host has taken back, leaves nothing to the next one.
    driver.recipe.rcpIndex = 0;
    if (isRefused)
        refuseTransfers();
    return Idle;
}

bool takeRecipeBlock(SendState transfer, VARIABLE &item)
{
    if (driver.recipe.rcpIndex >= driver.recipe.rcpBlocks.size())
        return false;
    driver.recipe.askedFor = driver.recipe.registration;
    rcpAddrToVar(driver.recipe.rcpBlocks.at(driver.recipe.rcpIndex), item, transfer == RecipeWrite);
    return true;
}

void rcpAddrToVar(const AddressSpan &block, VARIABLE &var, int withData)
{
    setRange(var, withData ? block : readAs(block, RecipeRead));
    std::memset(var.valueBuf, 0, sizeof var.valueBuf);
    if (!withData)
        return;
    if (driver.registerTypes.at(block.regNumber).unitKind == WordUnit) {
        const _RCP_VAR_PRO &first = driver.recipe.rcpEntries.at(block.firstEntry);
        const int unit = first.bufIndex + block.startAddr - first.startAddr;
        std::memcpy(var.valueBuf, bufferUnit(unit), size_t(block.count) * 2);
        return;
    }
    forEachRecipeValue(block, [&](int position, int n) -> bool {
        var.valueBuf[position] = *bufferUnit(n) != 0;
        return true;
    });
}

void copyRecipeReply(const quint16 *values)
{
    if (driver.recipe.askedFor != driver.recipe.registration)
        return;
    const ExchangeUnderWay exchange;
    const AddressSpan block = driver.recipe.rcpBlocks.at(driver.recipe.rcpIndex);
    const bool bitsOfWords = readAs(block, RecipeRead).regNumber != block.regNumber;
    forEachRecipeValue(block, [&](int position, int n) -> bool {
        const int bit = bitInWord(block.startAddr) + position;
        const int value =
            bitsOfWords ? values[bit / BitsPerWord] >> bit % BitsPerWord & 1 : values[position];
        setWord(bufferUnit(n), value);
        notifyHost(0, -1, QLatin1String("RWI"), n);
        return exchange.stands() && driver.recipe.askedFor == driver.recipe.registration;
    });
}

void finishRecipeBlock(SendState transfer, bool failed)
{
    if (!failed && ++driver.recipe.rcpIndex < driver.recipe.rcpBlocks.size())
        return;
    driver.recipe.rcpIndex = 0;
    QMutexLocker locker(driver.settings.hostMutex);
    driver.settings.hostShared[transfer == RecipeWrite ? RecipeWriteRequest : RecipeReadRequest] =
        0;
}
