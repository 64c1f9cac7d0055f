// What a register type is and how its addresses are counted: the tables, which the link's room
// defines, their look-ups, limits, and runs of addresses.
#ifndef TOLVANE_REGISTER_TYPES_H
#define TOLVANE_REGISTER_TYPES_H

#include "host_interface.h"

// ---- Identity and tables ----------------------------------------------------------------------

// Data inside the library is reached directly, not through a symbol table.
#pragma GCC visibility push(hidden)

extern const QString PROCOTOL_NAME;
extern const QString PROCOTOL_VERSION;
extern const QString PROCOTOL_DEFALT_COM_PAR;
extern const QString PROCOTOL_DEFALT_IP_PAR;
extern const QString PROCOTOL_PAR_HMI_SET_MODE;

/** One row of ADDRESS_RANGE_PRO; numbers stand as decimal text. tolvane_link.h has the rules. */
struct AddressRange
{
    QString addrFormat;  ///< pattern of the address text: "DDDD" a number, "DDDD.DD" word.bit
    QString minAddr;     ///< lowest address, written in the pattern
    QString maxAddr;     ///< highest address
    QString valueBits;   ///< width of one value
    QString access;      ///< "R", "W" or "RW"
    QString unitBits;    ///< width of what one address step covers in the controller's memory
};

/** The number of register types; as a row number, the row that stands for unknown names. */
extern const int RegisterTypeCount;

extern const QString REG_LIST[];
extern const AddressRange ADDRESS_RANGE_PRO[];  ///< and behind them the row of unknown names
extern const QString ADDRESS_RW_COMMAND[];      ///< how the link names the device

#pragma GCC visibility pop

/** Marks identity and tables: built before `driver`, whose constructor reads them. */
#define BUILT_BEFORE_DRIVER __attribute__((init_priority(1000)))

/** What one storage unit of a register type is, and where an address of the type lives. */
enum UnitKind {
    WordUnit,     ///< a 16-bit word; address b is unit b
    WordBitUnit,  ///< a 16-bit word; address b is bit b mod 16 of unit b / 16
    BitUnit,      ///< one bit; address b is unit b
    NoUnit        ///< unknown name with "_bit": requests for it have no effect on the cache
};

/** What the tables say of a register type name; looked up once per call and passed down. */
struct RegisterType
{
    int number;  ///< register-type number, or RegisterTypeCount for an unknown name
    UnitKind unitKind;
    QString areaName;  ///< of the data areas: "M" for "M_W" and "M_bit", else the whole name
    int wordType;      ///< number of the word type over the same words; own number for a BitUnit
    int bitType;       ///< number of the "_bit" type over the same words, or -1

    bool isKnown() const { return number != RegisterTypeCount; }
};

/**
 * Whether two texts are equal. Most texts compared inside the driver are the register tables' own,
 * which share their characters or differ in the first one: both are told without a call.
 */
inline bool sameText(const QString &a, const QString &b)
{
    const QChar *const inA = a.constData();
    const QChar *const inB = b.constData();
    return a.size() == b.size() && (inA == inB || (inA[0] == inB[0] && a == b));
}

/** Register-type number of a name, from 0, compared exactly; or -1. */
int getIndexFromRegName(const QString &name);

/** The facts of a name; an unknown one gets the fallback row. */
RegisterType registerType(const QString &name);

// ---- Limits ---------------------------------------------------------------------------------

enum {
    QueueLimit = 513,                  ///< items of the write and of the condition-read queue
    MaxUnitsPerRead = ValueBytes / 2,  ///< room for the values of one reply, on any link
    MaxAddresses = 524288,             ///< of one request of the host; more is no request
    BitsPerWord = 16
};

/** How many of `count` addresses a request of the host covers: at most MaxAddresses. */
inline int coveredCount(int count)
{
    return qMin<int>(count, MaxAddresses);
}

// ---- Arithmetic on address numbers ----------------------------------------------------------

/** addr + offset, wrapping as 32-bit two's complement: hosts may pass any number. */
inline int addrPlus(int addr, int offset)
{
    return int(quint32(addr) + quint32(offset));
}

/** The word that holds a bit address, and the bit in it; below zero, words count downwards. */
inline int wordOfBit(int bitAddr)
{
    return bitAddr >> 4;
}
inline int bitInWord(int bitAddr)
{
    return bitAddr & 15;
}
inline int bitAddress(int word, int bit)
{
    return int(quint32(word) * BitsPerWord + quint32(bit));
}
/** How many words `count` bits touch that start at bit address `bitAddr`. */
inline int wordsOfBits(int bitAddr, int count)
{
    return int((qint64(bitInWord(bitAddr)) + count + BitsPerWord - 1) / BitsPerWord);
}

/** A run of addresses of one known register type: what planning and cutting work on. */
struct AddressSpan
{
    int stationNo;
    int regNumber;  ///< register-type number
    int startAddr;
    int count;
    int firstEntry;  ///< of a recipe block: its first entry in rcpEntries
    int entries;     ///< of a recipe block: how many entries it serves, from the first on
};

/** The same run in whole words of the word type over the same memory, for a run of "_bit" bits. */
AddressSpan wordSpan(const AddressSpan &bits);

/** Makes `item` ask for the span; its kind and values stay. */
void setRange(VARIABLE &item, const AddressSpan &span);

#endif
