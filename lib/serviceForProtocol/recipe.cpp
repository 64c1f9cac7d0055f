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
 * Calls step(position, n) for each value of the entries that lies in the block, in order: its
 * position counted from the block's first address, and its unit in the recipe buffer. Ends when
 * step returns false.
 */
template <typename Step>
void forEachRecipeValue(int blockNumber, Step step)
{
    const _RCP_VAR_PRO block = driver.rcpBlocks.at(blockNumber);
    const int first = driver.rcpGroupStarts.at(blockNumber);
    // The blocks of one long entry share it.
    int end = int(driver.rcpEntries.size());
    for (int next = blockNumber + 1; next < driver.rcpGroupStarts.size(); ++next) {
        if (driver.rcpGroupStarts.at(next) != first) {
            end = driver.rcpGroupStarts.at(next);
            break;
        }
    }
    for (int e = first; e < end; ++e) {
        const _RCP_VAR_PRO entry = driver.rcpEntries.at(e);
        const qint64 offset = qint64(entry.startAddr) - block.startAddr;
        const qint64 from = qMax(-offset, qint64(0));
        const qint64 to = qMin(qint64(entry.count), block.count - offset);
        for (qint64 j = from; j < to; ++j) {
            if (!step(int(offset + j), int(entry.bufIndex + j)))
                return;
        }
    }
}

}  // namespace

void rcpAddrToVar(int blockNumber, VARIABLE &var, int withData)
{
    const _RCP_VAR_PRO &block = driver.rcpBlocks.at(blockNumber);
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
    forEachRecipeValue(blockNumber, [&](int position, int n) -> bool {
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
    forEachRecipeValue(driver.rcpIndex, [&](int position, int n) -> bool {
        const int value = isWords ? words.word[position] : words.bit(firstBit + position);
        unsigned char *unit = bufferUnit(n);
        unit[0] = static_cast<unsigned char>(value);
        unit[1] = static_cast<unsigned char>(value >> 8);
        notifyHost(0, -1, QLatin1String("RWI"), n);
        return exchange == driver.exchangeNo && driver.rcpTransferOf == driver.rcpRegistration;
    });
}
