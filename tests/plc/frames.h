// Frames for the controller's tests.
#ifndef PLC_TESTS_FRAMES_H
#define PLC_TESTS_FRAMES_H

#include <QByteArray>

/** A request with its opening byte, checksum and closing byte put around it. */
inline QByteArray framed(const QByteArray &text)
{
    int sum = 0;
    for (char c : text)
        sum += static_cast<unsigned char>(c);
    return '\x02' + text + QByteArray(1, char(sum & 0xFF)).toHex().toUpper() + '\x03';
}

const QByteArray readD0 = "\x02ra0000000255\x03";
const QByteArray zeroReply = "\x06r000032\x04";

#endif
