// What the link's room and the service floors share: register tables and their look-ups, the
// records of the driver's own making, and its one state object.
#ifndef TOLVANE_PROTOCOL_H
#define TOLVANE_PROTOCOL_H

#include <QtCore/QHash>
#include <QtCore/QPair>

#include "host_interface.h"

class Protocol;

// ---- Identity and register tables: the link's room defines them ------------------------------

// Data inside the library is reached directly, not through a symbol table.
#pragma GCC visibility push(hidden)

extern const QString PROCOTOL_NAME;
extern const QString PROCOTOL_VERSION;
extern const QString PROCOTOL_DEFALT_COM_PAR;
extern const QString PROCOTOL_DEFALT_IP_PAR;
extern const QString PROCOTOL_PAR_HMI_SET_MODE;

/** One row of ADDRESS_RANGE_PRO; numbers stand as decimal text. */
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

extern const QString REG_LIST[];  ///< word types before the bit types over the same words
extern const AddressRange ADDRESS_RANGE_PRO[];  ///< and behind them the row of unknown names
extern const QString ADDRESS_RW_COMMAND[];      ///< how the link names the device

/** The one instance: built at load, destroyed at unload. */
extern Protocol driver;

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

// ---- Records --------------------------------------------------------------------------------

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

/** A word from its bytes: 0 to 65535. */
inline int uchar2int16(unsigned char low, unsigned char high)
{
    return low | high << 8;
}

/** And back: the low byte first. */
inline void setWord(unsigned char *value, int word)
{
    value[0] = static_cast<unsigned char>(word);
    value[1] = static_cast<unsigned char>(word >> 8);
}

/** One data area: the cache of one storage unit of one station. */
struct _DATA_
{
    unsigned char spareFlag;
    unsigned char hasWriteValue;  ///< 1: writeValue is shown, a host write is not settled yet
    quint32 writeBitMask;    ///< outstanding bit writes of a word: bits 2k and 2k + 1 for bit k
    quint32 monitorFlags;    ///< bit 0: the unit is monitored
    quint32 bitMonitorMask;  ///< bit k: bit k of the word is monitored
    int stationNo;
    QString areaName;
    int unitAddr;
    unsigned char readValue[4];   ///< as last read or confirmed; a word's low byte first
    unsigned char writeValue[4];  ///< as last written by the host

    int readWord() const { return uchar2int16(readValue[0], readValue[1]); }
    int writtenWord() const { return uchar2int16(writeValue[0], writeValue[1]); }
    /** What the host sees. */
    int currentWord() const { return hasWriteValue ? writtenWord() : readWord(); }
};

/**
 * Where each data area stands in dataAreaList: by station and area name, and by page, the positions
 * in the list + 1, or 0, of 64 consecutive unit addresses. Kept by data_area.cpp.
 */
typedef QHash<QPair<int, QString>, QHash<int, QVector<int> > > DataAreaIndex;

// ---- State ----------------------------------------------------------------------------------

/** What the item in flight is. */
enum SendState {
    Idle = 0,
    HandShake = 1,
    QueuedWrite = 2,
    ConditionRead = 3,
    CyclicRead = 4,
    RecipeWrite = 5,
    RecipeRead = 6
};

/** All state of the driver. */
class Protocol
{
public:
    Protocol();

    ValueChangeCallBack valueChangeCallBack = 0;
    int propItem0 = 0;  ///< passed back as the first argument of change reports
    int propItem1 = 0;  ///< not 0: writes are shown but not queued
    int propItem2 = 0;  ///< kept only
    int propItem3 = 0;  ///< retry limit: bad replies to a frame until its item is given up
    int propItem4 = 0;  ///< block limit in words as the host gave it; mergeWords is in force
    unsigned char *hostShared = 0;
    void *hostContext = 0;
    unsigned char *rcpBuffer = 0;
    QMutex *hostMutex = 0;  ///< guards the request bytes of hostShared

    QVector<AddressSpan> readList;  ///< cyclic reads, served in rotation from readIndex on
    QList<VARIABLE> writeList;      ///< queued writes; the head may be in service
    QList<VARIABLE> condReadList;   ///< condition reads; the head may be in service
    QList<_DATA_> dataAreaList;     ///< the cache; areas are only ever added

    QVector<_RCP_VAR_PRO> rcpEntries;  ///< the kept recipe entries, sorted
    QVector<AddressSpan> rcpBlocks;    ///< the merged blocks, walked by rcpIndex

    VARIABLE lastCondVar;  ///< the item most recently queued as a condition read
    QList<QString> regNameList;
    VARIABLE curVar;       ///< the item being sent
    int sendState = Idle;  ///< a SendState
    int runCount = 0;      ///< writes and condition reads since the last cyclic read
    int handShakeRequest = 0;
    int retryCount = 0;  ///< consecutive bad replies to the frame in flight
    int mergeBits = 8;   ///< block limit of a bit request, in bits: mergeWords * 8
    int mergeWords = 1;  ///< block limit in force, in words: propItem4 held to what a frame carries
    int lastFrameFailed = 0;
    int frameIndex = 0;          ///< the frame of frameList whose reply is decoded
    QList<FRAME_PRO> frameList;  ///< frames of the current item; the head is in flight
    QMutex mutex;                ///< guards the removal and the counting of writes
    int rcpIndex = 0;            ///< the recipe block being transferred
    QString propertyPage;
    int itemsInFrame = 0;

    QVector<RegisterType> registerTypes;  ///< the facts of REG_LIST, by number
    int readIndex = 0;                    ///< the head of the rotation over readList
    DataAreaIndex areaIndex;
    bool itemIsQueueHead = false;  ///< a queued item in flight stands at the head of its queue

    // A callback runs the host's code in the middle of ours. These counters tell afterwards
    // whether what we were working on still stands.
    quint32 exchangeNo = 0;       ///< counts frames that left frameList
    quint32 cacheNo = 0;          ///< counts how often the cache was emptied
    quint32 condHeadNo = 0;       ///< counts the heads that left condReadList
    quint32 rcpRegistration = 0;  ///< counts recipe registrations
    quint32 rcpAskedFor = 0;      ///< the registration whose block was asked for last
    bool rcpRefused = false;      ///< the latest registration kept no entry
};

/** The exchange under way where this is made; the host may end it from inside a callback. */
struct ExchangeUnderWay
{
    const quint32 number = driver.exchangeNo;

    bool stands() const { return number == driver.exchangeNo; }
};

/**
 * Calls the host back, if a callback is registered. The host's code may call any export before
 * this returns. The text is the host's own copy: what it does to it leaves the tables alone.
 */
void notifyHost(int first, int stationNo, QString text, int address);

#endif
