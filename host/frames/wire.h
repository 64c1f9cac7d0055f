// The bytes around a frame and the checksum within it, for all that reads the wire.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace host {

constexpr char Stx = 0x02;  // opens a request
constexpr char Etx = 0x03;  // closes it
constexpr char Ack = 0x06;  // opens a reply
constexpr char Eot = 0x04;  // closes it; all between is printable

constexpr int ClosingBytes = 3;   // checksum and the last byte
constexpr int ShortestReply = 5;  // ACK, a byte for the controller's own use, checksum, EOT

/** As a frame carries a byte: "0A". */
inline QString hexPair(char byte)
{
    return QString::fromLatin1(QByteArray(1, byte).toHex().toUpper());
}

/** The checksum over the bytes from the second one up to `end`. */
inline char checksumOf(const QByteArray &frame, int end)
{
    int sum = 0;
    for (int i = 1; i < end; ++i)
        sum += static_cast<uchar>(frame[i]);
    return static_cast<char>(sum);
}

}  // namespace host
