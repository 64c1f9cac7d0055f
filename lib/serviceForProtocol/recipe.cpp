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
    return entry.ownerKey == driver.propItem0 && type.isKnown() && entry.count >= 1 &&
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
    return driver.rcpBuffer + 2 * qptrdiff(n);
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
        const _RCP_VAR_PRO entry = driver.rcpEntries.at(e);
        const int offset = entry.startAddr - block.startAddr;
        const int end = qMin(entry.count, block.count - offset);
        for (int j = qMax(-offset, 0); j < end; ++j) {
            if (!step(offset + j, entry.bufIndex + j))
                return;
        }
    }
}

}  // namespace

int intf_setRcpAddress(const QVector<_RCP_VAR_PRO> &entries)
{
    ++driver.rcpRegistration;
    driver.rcpEntries.clear();
    for (int i = 0; i < entries.size(); ++i) {
        _RCP_VAR_PRO entry = entries.at(i);
        const RegisterType type = registerType(entry.regName);
        entry.count = coveredCount(entry.count);
        if (!isKept(entry, type))
            continue;
        entry.regName = REG_LIST[type.number];  // the host's text may lie over passing memory
        driver.rcpEntries.append(entry);
    }
    driver.rcpRefused = driver.rcpEntries.isEmpty();
    if (driver.rcpRefused)
        return 0;  // the blocks stay: one of them may be in flight

    driver.rcpEntries = inWeightOrder(driver.rcpEntries, weightOf);
    QVector<AddressSpan> spans;
    for (int i = 0; i < driver.rcpEntries.size(); ++i) {
        const _RCP_VAR_PRO &entry = driver.rcpEntries.at(i);
        spans.append(spanOf(entry, getIndexFromRegName(entry.regName), i));
    }
    driver.rcpBlocks.clear();
    const QVector<AddressSpan> merged = addrMerge(spans, RecipeMode);
    for (int i = 0; i < merged.size(); ++i) {
        const RegisterType &type = driver.registerTypes.at(merged.at(i).regNumber);
        groupingKey(merged.at(i), recipeUnitsPerFrame(type),
                    [](const AddressSpan &block, int) { driver.rcpBlocks.append(block); });
    }
    return int(driver.rcpEntries.size());
}

SendState takeTransferRequest()
{
    if (!driver.hostShared)
        return Idle;
    QMutexLocker locker(driver.hostMutex);
    unsigned char &write = driver.hostShared[RecipeWriteRequest];
    unsigned char &read = driver.hostShared[RecipeReadRequest];
    if (write != 1 && read != 1) {
        driver.rcpIndex = 0;  // a request taken back leaves nothing behind for the next one
        return Idle;
    }
    if (driver.rcpBuffer && !driver.rcpRefused)
        return write == 1 ? RecipeWrite : RecipeRead;
    driver.rcpIndex = 0;
    write = 0;
    read = 0;
    return Idle;
}

bool takeRecipeBlock(SendState transfer, VARIABLE &item)
{
    if (driver.rcpIndex >= driver.rcpBlocks.size())
        return false;
    driver.rcpAskedFor = driver.rcpRegistration;
    rcpAddrToVar(driver.rcpBlocks.at(driver.rcpIndex), item, transfer == RecipeWrite);
    return true;
}

void rcpAddrToVar(const AddressSpan &block, VARIABLE &var, int withData)
{
    setRange(var, withData ? block : readAs(block, RecipeRead));
    std::memset(var.valueBuf, 0, sizeof var.valueBuf);
    if (!withData)
        return;
    if (driver.registerTypes.at(block.regNumber).unitKind == WordUnit) {
        const _RCP_VAR_PRO &first = driver.rcpEntries.at(block.firstEntry);
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
    if (driver.rcpAskedFor != driver.rcpRegistration)
        return;
    const quint32 exchange = driver.exchangeNo;
    const AddressSpan block = driver.rcpBlocks.at(driver.rcpIndex);
    const bool bitsOfWords = readAs(block, RecipeRead).regNumber != block.regNumber;
    forEachRecipeValue(block, [&](int position, int n) -> bool {
        const int bit = bitInWord(block.startAddr) + position;
        const int value =
            bitsOfWords ? values[bit / BitsPerWord] >> bit % BitsPerWord & 1 : values[position];
        unsigned char *unit = bufferUnit(n);
        unit[0] = static_cast<unsigned char>(value);
        unit[1] = static_cast<unsigned char>(value >> 8);
        notifyHost(0, -1, QLatin1String("RWI"), n);
        return exchange == driver.exchangeNo && driver.rcpAskedFor == driver.rcpRegistration;
    });
}

void finishRecipeBlock(SendState transfer, bool failed)
{
    if (!failed && ++driver.rcpIndex < driver.rcpBlocks.size())
        return;
    driver.rcpIndex = 0;
    QMutexLocker locker(driver.hostMutex);
    driver.hostShared[transfer == RecipeWrite ? RecipeWriteRequest : RecipeReadRequest] = 0;
}
