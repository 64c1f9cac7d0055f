// The serial line: settings text, opening, and blocking transfers that notice a lost device.
#include "host/serial_line.h"

#include "host/failure.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QStringList>

#include <algorithm>

namespace host {

using std::chrono::microseconds;
using std::chrono::milliseconds;

namespace {

constexpr int MicrosecondsPerSecond = 1000 * 1000;
constexpr milliseconds SendPatience(1000);  // beyond the time that the bytes take on the wire

Failure refuse(const QString &text, const char *part, const QString &found, const char *expected)
{
    return Failure(QStringLiteral("serial settings \"%1\": %2 \"%3\", expected %4")
                       .arg(text, QLatin1String(part), found, QLatin1String(expected)),
                   BadInput);
}

}  // namespace

SerialSettings SerialSettings::parse(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 4)
        throw refuse(text, "the text", text, "baud,data bits,parity,stop bits");

    SerialSettings settings;
    settings.baudRate = parts[0].toInt();
    if (settings.baudRate < 1)
        throw refuse(text, "baud rate", parts[0], "a number above 0");

    const int dataBits = parts[1].toInt();
    if (dataBits < 5 || dataBits > 8)
        throw refuse(text, "data bits", parts[1], "5 to 8");
    settings.dataBits = static_cast<QSerialPort::DataBits>(dataBits);

    if (parts[2] == QLatin1String("EVEN"))
        settings.parity = QSerialPort::EvenParity;
    else if (parts[2] == QLatin1String("ODD"))
        settings.parity = QSerialPort::OddParity;
    else if (parts[2] != QLatin1String("NONE"))
        throw refuse(text, "parity", parts[2], "NONE, EVEN or ODD");

    if (parts[3] == QLatin1String("2"))
        settings.stopBits = QSerialPort::TwoStop;
    else if (parts[3] != QLatin1String("1"))
        throw refuse(text, "stop bits", parts[3], "1 or 2");
    return settings;
}

int SerialSettings::bitsPerByte() const
{
    const int startBits = 1;
    const int parityBits = parity == QSerialPort::NoParity ? 0 : 1;
    return startBits + dataBits + parityBits + stopBits;
}

microseconds SerialSettings::wireTime(int bytes) const
{
    return microseconds(qint64(bytes) * bitsPerByte() * MicrosecondsPerSecond / baudRate);
}

SerialLine::SerialLine(const QString &device, const SerialSettings &settings) : m_settings(settings)
{
    m_port.setPortName(device);
    m_port.setBaudRate(settings.baudRate);
    m_port.setDataBits(settings.dataBits);
    m_port.setParity(settings.parity);
    m_port.setStopBits(settings.stopBits);
}

bool SerialLine::open()
{
    m_port.close();
    m_errorText.clear();
    if (m_port.open(QIODevice::ReadWrite))
        return true;
    m_errorText = m_port.errorString();
    return false;
}

QByteArray SerialLine::discard()
{
    QByteArray bytes = isOpen() ? m_port.readAll() : QByteArray();
    while (wait(milliseconds(0)))
        bytes += m_port.readAll();
    return bytes;
}

bool SerialLine::send(const QByteArray &bytes)
{
    if (!isOpen())
        return false;
    const QDeadlineTimer deadline(std::chrono::ceil<milliseconds>(wireTime(int(bytes.size()))) +
                                  SendPatience);
    m_port.clearError();
    bool taken = m_port.write(bytes) == bytes.size();
    while (taken && m_port.bytesToWrite() > 0)
        taken = m_port.waitForBytesWritten(int(deadline.remainingTime()));
    if (!taken)
        lose();
    return taken;
}

QByteArray SerialLine::collect(int bytes, milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    while (m_port.bytesAvailable() < bytes &&
           wait(milliseconds(std::max<qint64>(0, deadline.remainingTime())))) {
    }
    return isOpen() ? m_port.read(bytes) : QByteArray();
}

microseconds SerialLine::wireTime(int bytes) const
{
    return m_settings.wireTime(bytes);
}

// Returns true when bytes have arrived. Every failure but a time-out means that the device has
// gone; an unplugged one may report end of file, and no error at all.
bool SerialLine::wait(milliseconds timeout)
{
    if (!m_port.isOpen())
        return false;
    m_port.clearError();
    if (m_port.waitForReadyRead(int(timeout.count())))
        return true;
    if (m_port.error() != QSerialPort::TimeoutError)
        lose();
    return false;
}

void SerialLine::lose()
{
    // Of a device that was pulled out the system often says nothing that Qt knows a name for.
    const bool unnamed =
        m_port.error() == QSerialPort::NoError || m_port.error() == QSerialPort::UnknownError;
    m_errorText = unnamed ? QStringLiteral("the device has gone") : m_port.errorString();
    m_port.close();
}

}  // namespace host
