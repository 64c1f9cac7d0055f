// What one request carries, and when two spans may share one.
#include "wire.h"

namespace {

/** The address field counts bytes in 16 bits. */
enum { AddressableWords = 0x8000 };

/** A run of bits that starts in the middle of a word touches one word more. */
const int MaxBitsPerRead = (MaxWordsPerFrame - 1) * BitsPerWord;

}  // namespace

int wordsPerRequest()
{
    return MaxWordsPerFrame;
}

int unitsPerRead(const RegisterType &type, SendState purpose)
{
    if (type.unitKind == WordBitUnit)
        return MaxBitsPerRead;
    // Contacts are asked for as if each was a word, on condition even as if each was 16.
    const bool sixteenfold = type.unitKind == BitUnit && purpose == ConditionRead;
    return sixteenfold ? MaxWordsPerFrame / BitsPerWord : MaxWordsPerFrame;
}

int unitsPerWrite(const RegisterType &type)
{
    return type.unitKind == WordUnit ? int(MaxWordsPerFrame) : int(ValueBytes);
}

AddressSpan readAs(const AddressSpan &span, SendState purpose)
{
    const UnitKind kind = driver.registerTypes.at(span.regNumber).unitKind;
    AddressSpan read = kind == WordBitUnit ? wordSpan(span) : span;
    if (kind == BitUnit && purpose == ConditionRead)
        read.count *= BitsPerWord;
    return read;
}

bool canBegin(const AddressSpan &span)
{
    // Requests name no station: any will do.
    const int word = firstWordOf(driver.registerTypes.at(span.regNumber), span.startAddr);
    return word >= 0 && word < AddressableWords;
}

int judgeAddrMerge(const AddressSpan &block, const AddressSpan &next, int widestGap)
{
    if (block.stationNo != next.stationNo || block.regNumber != next.regNumber)
        return Separate;
    // Weights wrap, so a span that starts lower may follow; blocks grow upwards only.
    if (next.startAddr < block.startAddr)
        return Separate;
    if (next.startAddr - (block.startAddr + block.count) > widestGap)
        return Separate;
    // Contacts are read from the requested one on; that is how this driver asks for them.
    if (driver.registerTypes.at(block.regNumber).unitKind == BitUnit &&
        block.startAddr != next.startAddr)
        return Separate;
    return Joined;
}
