// Address texts of any register type, and the key that orders read planning.
#ifndef TOLVANE_ADDRESS_H
#define TOLVANE_ADDRESS_H

#include "../tolvane_link/tolvane_link.h"

/** Whether a pattern is made of more than one character, as the word.bit patterns are. */
bool isMixedFormat(const QString &format);

/**
 * Converts an address text by the type's pattern. Returns 1 with the address number in `number`,
 * or -1: `number` is then 0, or unchanged for a word.bit pattern.
 */
int a2i(const QString &addrText, int &number, const QString &format, const QString &regName);

/**
 * Text of an address number: as word and bit where the type's pattern is mixed, else without
 * leading zeros in the base that the pattern's first letter names: "D" unsigned decimal, "H"
 * lower-case hexadecimal, "O" octal; any other letter gives an empty text.
 */
QString addressText(const RegisterType &type, int number);

/**
 * What a request asks for and how much came back, as "1#D_W100(10)(0)": station, register type,
 * address, count, bytes of the reply. Empty for an unknown type.
 */
QString getErrorInfo(const RegisterType &type, const VARIABLE &item, int replyBytes);

/**
 * Ordering key: station, then register type, then address number, wrapping in 32 bits and meant to
 * be compared unsigned. An unknown name counts as type number -1.
 */
quint32 getRegAddressWeight(int stationNo, const QString &regName, int number);

/** The same for a register-type number. */
quint32 addressWeight(int stationNo, int regNumber, int number);

#endif
