// Recipe blocks as request items, and where their values stand in the host's recipe buffer.
#include "recipe.h"

#include "read_plan.h"

namespace {

/** The bytes of one 16-bit unit of the recipe buffer, low byte first. */
unsigned char *bufferUnit(int n)
{
    return driver.rcpBuffer + 2 * qptrdiff(n);
}

/**
 * Calls step(position, n) for each value of the block's entries, in order: its position counted
 * from the block's first address, and its unit in the recipe buffer. Ends when step returns false.
 */
template <typename Step>
void forEachRecipeValue(int blockNumber, Step step)
{
    const int first = driver.rcpGroupStarts.at(blockNumber);
    const int end = blockNumber + 1 < driver.rcpGroupStarts.size()
                        ? driver.rcpGroupStarts.at(blockNumber + 1)
                        : int(driver.rcpEntries.size());
    const int base = driver.rcpBlocks.at(blockNumber).startAddr;
    for (int e = first; e < end; ++e) {
        const int offset = driver.rcpEntries.at(e).startAddr - base;
        const int bufIndex = driver.rcpEntries.at(e).bufIndex;
        const int count = driver.rcpEntries.at(e).count;
        for (int j = 0; j < count; ++j) {
            if (!step(offset + j, bufIndex + j))
                return;
        }
    }
}

}  // namespace

void rcpAddrToVar(const _RCP_VAR_PRO &block, VARIABLE &var, int withData)
{
    const RegisterType type = registerType(block.regName);
    AddressSpan span = {block.stationNo, type.number, block.startAddr, block.count, 0};
    if (!withData && type.unitKind == WordBitUnit)
        span = wordSpan(span);
    var.stationNo = span.stationNo;
    var.regName = REG_LIST[span.regNumber];
    var.startAddr = span.startAddr;
    var.count = span.count;
    std::memset(var.valueBuf, 0, sizeof var.valueBuf);
    if (!withData)
        return;
    if (type.unitKind == WordUnit) {
        std::memcpy(var.valueBuf, bufferUnit(block.bufIndex), size_t(block.count) * 2);
        return;
    }
    forEachRecipeValue(driver.rcpIndex, [&](int position, int n) {
        var.valueBuf[position] = *bufferUnit(n) != 0;
        return true;
    });
}

void copyRecipeReply(const ReplyWords &words)
{
    const quint32 exchange = driver.exchangeNo;
    const _RCP_VAR_PRO &block = driver.rcpBlocks.at(driver.rcpIndex);
    const bool isWords = registerType(block.regName).unitKind == WordUnit;
    const int firstBit = bitInWord(block.startAddr);
    forEachRecipeValue(driver.rcpIndex, [&](int position, int n) {
        const int value = isWords ? words.word[position] : words.bit(firstBit + position);
        unsigned char *unit = bufferUnit(n);
        unit[0] = static_cast<unsigned char>(value);
        unit[1] = static_cast<unsigned char>(value >> 8);
        notifyHost(0, -1, QLatin1String("RWI"), n);
        return exchange == driver.exchangeNo && driver.rcpTransferOf == driver.rcpRegistration;
    });
}
