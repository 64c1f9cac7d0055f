// The port's settings and its errors.
#include "host/line/serial_line.h"

namespace host {

SerialLine::SerialLine(const QString &device, const LinePace &pace) : DeviceLine(m_port, pace)
{
    m_port.setPortName(device);
    m_port.setBaudRate(pace.settings.baudRate);
    m_port.setDataBits(pace.settings.dataBits);
    m_port.setParity(pace.settings.parity);
    m_port.setStopBits(pace.settings.stopBits);
}

// Every failure but a time-out means that the device has gone; an unplugged one may report end of
// file, and no error at all.
bool SerialLine::timedOut()
{
    const bool timedOut = m_port.error() == QSerialPort::TimeoutError;
    if (timedOut)
        m_port.clearError();
    return timedOut;
}

QString SerialLine::deviceError() const
{
    switch (m_port.error()) {
        case QSerialPort::PermissionError:
            return QStringLiteral(
                       "%1 (another program may hold it; a user of serial ports belongs to the "
                       "group dialout)")
                .arg(m_port.errorString());
        // Of a device that was pulled out the system often says nothing that fits.
        case QSerialPort::NoError:
        case QSerialPort::UnknownError:
        case QSerialPort::ResourceError:
        case QSerialPort::TimeoutError:
        case QSerialPort::UnsupportedOperationError:
            return QStringLiteral("the device has gone");
        default:
            return m_port.errorString();
    }
}

}  // namespace host
