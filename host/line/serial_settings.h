// The settings of a serial line, which give its pace.
#pragma once

#include "host/line/line.h"

#include <QtSerialPort/QSerialPort>

namespace host {

struct SerialSettings
{
    static constexpr int HighestBaud = 4000000;

    qint32 baudRate = 0;
    QSerialPort::DataBits dataBits = QSerialPort::Data8;
    QSerialPort::Parity parity = QSerialPort::NoParity;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;

    /** Bits that one byte takes on the wire, start, parity and stop bits included. */
    int bitsPerByte() const;

    /** How long so many bytes travel, to the microsecond. */
    std::chrono::microseconds wireTime(int bytes) const;

    /**
     * Reads "baud,data bits,parity,stop bits", such as "115200,8,NONE,1", "9600,8,E,1" or
     * "9600,8N1"; the parity is NONE, EVEN or ODD, or its first letter. Throws Failure (bad input)
     * that names the part it could not take.
     */
    static SerialSettings parse(const QString &text);
};

}  // namespace host
