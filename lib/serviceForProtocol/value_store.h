// Values entering the cache from either side, and the reports of what changed.
#ifndef TOLVANE_VALUE_STORE_H
#define TOLVANE_VALUE_STORE_H

#include "data_area.h"

/** A word from its bytes: 0 to 65535. */
inline int uchar2int16(unsigned char low, unsigned char high)
{
    return low + 256 * high;
}

/**
 * Reports the 16-bit data area at `index`: each monitored bit in which the two word values differ,
 * in ascending order, then the word if it is monitored. A null value means all monitored bits;
 * skipBits leaves them out. The word is reported without comparing: the caller has.
 */
void _wordDataChange(const int *oldValue, const int *newValue, int index, int skipBits);

/** Reports the bit data area at `index` if it is monitored. */
void _bitDataChange(int index);

/**
 * Shows a host write in the cache and reports each change. `values`: 2 bytes a word, low byte
 * first; 1 byte a bit, of which "_bit" types take exactly 1 as set. A name without a unit kind
 * stores nothing.
 */
void write_saveDataToArea(int stationNo, const QString &regName, int startAddr, int count,
                          const unsigned char *values);

/** Stores a word read that differs from the last one in the data area at `index`; reports it. */
void storeChangedWord(int index, int word);

/** The same for a bit, 0 or 1. */
void storeChangedBit(int index, int value);

/** Stores a word read from the controller: the step of every exchange, unchanged nearly always. */
inline void storeReadWord(const Unit &unit, int word)
{
    const unsigned char *lastRead = unit.constArea().readValue;
    if (uchar2int16(lastRead[0], lastRead[1]) != word)
        storeChangedWord(unit.index, word);
}

/** The same for a bit, 0 or 1. */
inline void storeReadBit(const Unit &unit, int value)
{
    if (unit.constArea().readValue[0] != value)
        storeChangedBit(unit.index, value);
}

/**
 * Settles the data areas of a finished write: result 1, acknowledged, makes the written values the
 * read values; any other falls back to the values last read and reports that.
 */
void _write_FailOrSuc(int stationNo, const QString &regName, int startAddr, int count, int result);

#endif
