// What must hold of the driver's state whatever the wire and the host do.
#include "invariants.h"

#include "serviceForProtocol/data_area.h"

#include <cstdio>
#include <cstdlib>
#include <set>
#include <tuple>

namespace {

QByteArray checksumOf(const QByteArray &bytes)
{
    unsigned sum = 0;
    for (const char byte : bytes)
        sum += static_cast<unsigned char>(byte);
    return QByteArray::number(sum & 0xFF, 16).rightJustified(2, '0').toUpper();
}

}  // namespace

void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "invariant broken: %s\n", what);
    std::abort();
}

void checkQueuesAndFrames()
{
    require(driver.writeList.size() <= 513, "write queue beyond 513");
    require(driver.condReadList.size() <= 513, "condition-read queue beyond 513");
    for (int i = 0; i < driver.frameList.size(); ++i) {
        const FRAME_PRO &frame = driver.frameList.at(i);
        if (frame.sendLen == 0)
            continue;
        require(frame.readCount >= 0 && frame.readCount <= 127, "frame reads beyond 127 words");
        require(frame.sendLen >= 14 && frame.sendLen <= 14 + 4 * 127, "frame of impossible length");
        const QByteArray bytes(reinterpret_cast<const char *>(frame.frame), frame.sendLen);
        require(bytes.startsWith('\x02') && bytes.endsWith('\x03'), "frame without STX and ETX");
        require(bytes.mid(frame.sendLen - 3, 2) == checksumOf(bytes.mid(1, frame.sendLen - 4)),
                "frame with a wrong checksum");
    }
}

void checkDataAreas()
{
    std::set<std::tuple<int, QString, int>> keys;
    const int size = int(driver.dataAreaList.size());
    for (int i = 0; i < size; ++i) {
        const _DATA_ area = driver.dataAreaList.at(i);
        require(keys.emplace(area.stationNo, area.areaName, area.unitAddr).second,
                "two data areas of one key");
        require(getIndexOfDataArea(area.stationNo, area.areaName, area.unitAddr,
                                   driver.dataAreaList) == i,
                "index and list of the data areas disagree");
    }
    require(driver.dataAreaList.size() == size, "looking up what is there appended something");
}

void checkWritesSettled()
{
    if (!driver.writeList.isEmpty())
        return;
    for (int i = 0; i < driver.dataAreaList.size(); ++i) {
        const _DATA_ &area = driver.dataAreaList.at(i);
        require(!area.hasWriteValue || area.writeBitMask != 0,
                "a written value is shown although its write has left the queue");
    }
}

QByteArray framedReply(const QByteArray &body)
{
    return '\x06' + body + checksumOf(body) + '\x04';
}

QByteArray goodReply(const FRAME_PRO &frame, const QByteArray &data)
{
    QByteArray body("r");
    for (int i = 0; i < frame.readCount * 4; ++i)
        body += data.isEmpty() ? '0' : data.at(i % data.size());
    return framedReply(body);
}
