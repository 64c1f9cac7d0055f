// A serial port, or a pseudo-terminal, as the line to the controller.
#ifndef TOLVANE_HOST_SERIAL_LINE_H
#define TOLVANE_HOST_SERIAL_LINE_H

#include "host/line.h"

#include <QtSerialPort/QSerialPort>

namespace host {

struct SerialSettings
{
    qint32 baudRate = 0;
    QSerialPort::DataBits dataBits = QSerialPort::Data8;
    QSerialPort::Parity parity = QSerialPort::NoParity;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;

    /** Bits that one byte takes on the wire, start, parity and stop bits included. */
    int bitsPerByte() const;

    /** How long so many bytes travel. */
    std::chrono::microseconds wireTime(int bytes) const;

    /**
     * Reads "baud,data bits,parity,stop bits", such as "115200,8,NONE,1"; the parity is NONE, EVEN
     * or ODD. Throws Failure (bad input) that names the part it could not take.
     */
    static SerialSettings parse(const QString &text);
};

/** Blocking use of QSerialPort on the calling thread; no event loop is needed. */
class SerialLine : public Line
{
public:
    /** device: a port name or the path of a device file. The line is not opened yet. */
    SerialLine(const QString &device, const SerialSettings &settings);

    bool open() override;
    bool isOpen() const override { return m_port.isOpen(); }
    QString errorText() const override { return m_errorText; }
    QByteArray discard() override;
    bool send(const QByteArray &bytes) override;
    QByteArray collect(int bytes, std::chrono::milliseconds timeout) override;
    std::chrono::microseconds wireTime(int bytes) const override;

private:
    bool wait(std::chrono::milliseconds timeout);
    void lose();

    QSerialPort m_port;
    SerialSettings m_settings;
    QString m_errorText;
};

}  // namespace host

#endif
