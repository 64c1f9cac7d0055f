// Values entering the cache from either side, and the reports of what changed.
#ifndef TOLVANE_VALUE_STORE_H
#define TOLVANE_VALUE_STORE_H

#include "data_area.h"

/** Changed bits that stand for every bit of a word. */
enum { AllBits = 0xFFFF };

/**
 * Reports a 16-bit data area: each monitored bit of those `changed`, in ascending order, then the
 * word if it is monitored, with or without a changed bit: that it has changed the caller knows.
 */
void _wordDataChange(int changed, const Unit &unit);

/** Reports a bit data area if it is monitored. */
void _bitDataChange(const Unit &unit);

/**
 * Shows a host write in the cache and reports each change. `values`: 2 bytes a word, low byte
 * first; 1 byte a bit, of which "_bit" types take exactly 1 as set. A type without a unit kind
 * stores nothing.
 */
void write_saveDataToArea(int stationNo, const RegisterType &type, int startAddr, int count,
                          const unsigned char *values);

/** Stores `count` values read from the controller, words or bits, and reports what changed. */
void storeReadValues(int stationNo, const RegisterType &type, int startAddr, int count,
                     const quint16 *values);

/**
 * Settles the data areas of a finished write: result 1, acknowledged, makes the written values the
 * read values; any other falls back to the values last read and reports that.
 */
void _write_FailOrSuc(int stationNo, const RegisterType &type, int startAddr, int count,
                      int result);

#endif
