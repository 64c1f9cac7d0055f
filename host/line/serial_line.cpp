// The port's settings and its errors.
#include "host/line/serial_line.h"

#include "host/line/port_device.h"

namespace host {

SerialLine::SerialLine(const QString &device, const LinePace &pace)
    : DeviceLine(m_port, pace), m_name(device)
{
    m_port.setBaudRate(pace.settings.baudRate);
    m_port.setDataBits(pace.settings.dataBits);
    m_port.setParity(pace.settings.parity);
    m_port.setStopBits(pace.settings.stopBits);
    m_port.setReadBufferSize(MostBuffered);
}

// A link may lead to another device by now.
bool SerialLine::openDevice()
{
    m_device = portDevice(m_name);
    m_port.setPortName(m_device);
    return strangeLock(m_device).isEmpty() && m_port.open(QIODevice::ReadWrite);
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

// Of a device that was pulled out the system often says nothing that fits.
QString SerialLine::deviceError() const
{
    return m_port.isOpen() ? "the device has gone"_s : portTrouble(m_device, m_port.errorString());
}

}  // namespace host
