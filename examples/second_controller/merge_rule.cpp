// What one request carries, and when two spans may share one.
#include "wire.h"

namespace {

/** Station numbers of single devices; to 0 all listen and nobody answers. */
enum { FirstStation = 1, LastStation = 247 };

/** The address field has 16 bits. */
enum { AddressableUnits = 0x10000 };

/** The span's first register or coil. */
int firstUnitOf(const AddressSpan &span)
{
    const bool bitsOfWords = driver.registerTypes.at(span.regNumber).unitKind == WordBitUnit;
    return bitsOfWords ? wordOfBit(span.startAddr) : span.startAddr;
}

}  // namespace

int wordsPerRequest()
{
    return MaxRegistersPerRead;
}

int unitsPerRead(const RegisterType &type, SendState)
{
    switch (type.unitKind) {
        case WordUnit:
            return MaxRegistersPerRead;
        case WordBitUnit:  // those that start within a word touch one word more
            return (MaxRegistersPerRead - 1) * BitsPerWord;
        case BitUnit:
        case NoUnit:
            break;
    }
    return qMin<int>(MaxCoilsPerRead, MaxUnitsPerRead);
}

int unitsPerWrite(const RegisterType &type)
{
    return type.unitKind == WordUnit ? int(MaxRegistersPerWrite)
                                     : qMin<int>(MaxCoilsPerWrite, ValueBytes);
}

AddressSpan readAs(const AddressSpan &span, SendState)
{
    const bool bitsOfWords = driver.registerTypes.at(span.regNumber).unitKind == WordBitUnit;
    return bitsOfWords ? wordSpan(span) : span;
}

bool canBegin(const AddressSpan &span)
{
    const int unit = firstUnitOf(span);
    return unit >= 0 && unit < AddressableUnits && span.stationNo >= FirstStation &&
           span.stationNo <= LastStation;
}

int judgeAddrMerge(const AddressSpan &block, const AddressSpan &next, int)
{
    if (block.stationNo != next.stationNo || block.regNumber != next.regNumber)
        return Separate;
    if (next.startAddr < block.startAddr)
        return Separate;
    // No gap is bridged: one register in it that the device lacks and it refuses the whole read.
    return next.startAddr <= block.startAddr + block.count ? Joined : Separate;
}
