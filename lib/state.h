// The state of the driver, a record an owner; others read it, and change what is said with it.
#ifndef TOLVANE_STATE_H
#define TOLVANE_STATE_H

#include <QtCore/QHash>
#include <QtCore/QPair>

#include "register_types.h"

// ---- Settings: what the host has given (exports/lifecycle.cpp) --------------------------------

struct Settings
{
    ValueChangeCallBack valueChangeCallBack = 0;
    int propItem0 = 0;   ///< passed back as the first argument of change reports
    int propItem1 = 0;   ///< not 0: writes are shown but not queued
    int propItem2 = 0;   ///< kept only
    int propItem3 = 0;   ///< retry limit: bad replies to a frame until its item is given up
    int propItem4 = 0;   ///< block limit in words as the host gave it; mergeWords is in force
    int mergeBits = 8;   ///< block limit of a bit request, in bits: mergeWords * 8
    int mergeWords = 1;  ///< block limit in force, in words: propItem4 held to what a frame carries
    unsigned char *hostShared = 0;
    void *hostContext = 0;
    unsigned char *rcpBuffer = 0;
    QMutex *hostMutex = 0;  ///< guards the request bytes of hostShared
    QString propertyPage;
};

// ---- Cache of the controller's memory (data_area.cpp; values and marks: value_store.cpp) -------

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

struct Cache
{
    QList<_DATA_> dataAreaList;  ///< areas are only ever added
    DataAreaIndex index;
    quint32 number = 0;  ///< counts how often the cache was emptied
};

// ---- Loop: queues and the item in flight (exports/loop.cpp) ------------------------------------
// The queues are filled by exports/monitor.cpp and values.cpp; frames are appended by the link.

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

struct Loop
{
    QVector<AddressSpan> readList;  ///< cyclic reads, served in rotation from readIndex on
    int readIndex = 0;              ///< the head of the rotation
    QList<VARIABLE> writeList;      ///< queued writes; the head may be in service
    QList<VARIABLE> condReadList;   ///< condition reads; the head may be in service
    VARIABLE lastCondVar;           ///< the item most recently queued as a condition read
    QMutex mutex;                   ///< guards the removal and the counting of writes
    int handShakeRequest = 0;
    int runCount = 0;  ///< writes and condition reads since the last cyclic read

    VARIABLE curVar;               ///< the item being sent
    int sendState = Idle;          ///< what it is: a SendState
    bool itemIsQueueHead = false;  ///< it was queued, and stands at the head of its queue still
    /**
     * Its frames; the head is in flight. Judging the reply to the head may append another behind
     * it, which ends references into the list.
     */
    QList<FRAME_PRO> frameList;
    int frameIndex = 0;  ///< the frame of frameList whose reply is decoded
    int itemsInFrame = 0;
    int retryCount = 0;  ///< consecutive bad replies to the frame in flight
    int lastFrameFailed = 0;

    // What a callback changes under our hands, counted.
    quint32 exchangeNo = 0;  ///< frames that left frameList
    quint32 condHeadNo = 0;  ///< heads that left condReadList
};

// ---- Recipe (recipe.cpp) -----------------------------------------------------------------------

struct Recipe
{
    QVector<_RCP_VAR_PRO> rcpEntries;  ///< the kept recipe entries, sorted
    QVector<AddressSpan> rcpBlocks;    ///< the merged blocks, walked by rcpIndex
    int rcpIndex = 0;                  ///< the block being transferred
    quint32 registration = 0;          ///< counts registrations
    quint32 askedFor = 0;              ///< the registration whose block was asked for last
    bool isRefused = false;            ///< the latest registration kept no entry
};

#endif
