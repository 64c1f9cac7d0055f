// What must hold of the driver's state whatever the wire and the host do, and replies to fuzz with.
#ifndef TOLVANE_FUZZ_INVARIANTS_H
#define TOLVANE_FUZZ_INVARIANTS_H

#include <cstdio>
#include <cstdlib>

#include "serviceForProtocol/data_area.h"

/** The two checksum characters of some bytes. */
inline const char *checksumOf(const unsigned char *bytes, int length)
{
    static char text[3];
    unsigned sum = 0;
    for (int i = 0; i < length; ++i)
        sum += bytes[i];
    text[0] = "0123456789ABCDEF"[sum >> 4 & 0xF];
    text[1] = "0123456789ABCDEF"[sum & 0xF];
    return text;
}

/** Ends the process with a message when the condition does not hold. */
inline void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "invariant broken: %s\n", what);
    std::abort();
}

/** The queues' lengths. */
inline void checkQueues()
{
    require(driver.loop.writeList.size() <= 513, "write queue beyond 513");
    require(driver.loop.condReadList.size() <= 513, "condition-read queue beyond 513");
}

/** A frame on offer: length, control bytes, checksum. */
inline void checkFrame(const FRAME_PRO &frame)
{
    const unsigned char *const bytes = frame.frame;
    const int length = frame.sendLen;
    require(frame.readCount >= 0 && frame.readCount <= 127, "frame reads beyond 127 words");
    require(length >= 14 && length <= 14 + 4 * 127, "frame of impossible length");
    require(bytes[0] == 2 && bytes[length - 1] == 3, "frame without STX and ETX");
    require(!std::memcmp(bytes + length - 3, checksumOf(bytes + 1, length - 4), 2),
            "frame with a wrong checksum");
}

/** At most one data area a key: the look-up finds each at its place and appends nothing. */
inline void checkDataAreas()
{
    const int size = int(driver.cache.dataAreaList.size());
    for (int i = 0; i < size; ++i) {
        const _DATA_ area = driver.cache.dataAreaList.at(i);
        require(getIndexOfDataArea(area.stationNo, area.areaName, area.unitAddr) == i,
                "a data area is not found, or another of its key");
    }
    require(driver.cache.dataAreaList.size() == size,
            "looking up what is there appended something");
}

/** With nothing left to write, no data area shows a written value unless a mark is outstanding. */
inline void checkWritesSettled()
{
    for (int i = 0; i < driver.cache.dataAreaList.size() && driver.loop.writeList.isEmpty(); ++i) {
        const _DATA_ &area = driver.cache.dataAreaList.at(i);
        require(!area.hasWriteValue || area.writeBitMask != 0,
                "a written value is shown although its write has left the queue");
    }
}

/** Puts the right checksum and the control bytes around `body`. */
inline QByteArray framedReply(const QByteArray &body)
{
    const unsigned char *const bytes = reinterpret_cast<const unsigned char *>(body.constData());
    return '\x06' + body + checksumOf(bytes, int(body.size())) + '\x04';
}

/** A key with the bit mark that belongs to its type. */
inline KEY_ADDRESS keyOf(const QString &regName, int startAddr, int count)
{
    KEY_ADDRESS key;
    key.stationNo = 1;
    key.regName = regName;
    key.startAddr = startAddr;
    key.count = count;
    key.bitMark = regName.endsWith(QLatin1String("_W")) ? 0 : -1;
    return key;
}

inline _RCP_VAR_PRO entryOf(const QString &regName, int startAddr, int count, int bufIndex)
{
    _RCP_VAR_PRO entry;
    entry.ownerKey = 1;
    entry.stationNo = 1;
    entry.regName = regName;
    entry.startAddr = startAddr;
    entry.count = count;
    entry.bufIndex = bufIndex;
    return entry;
}

#endif
