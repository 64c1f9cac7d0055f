// A serial port, or a pseudo-terminal, as the line to the controller.
#pragma once

#include "host/line/device_line.h"

namespace host {

class SerialLine : public DeviceLine
{
public:
    /** device: a port name or the path of a device file. The line is not opened yet. */
    SerialLine(const QString &device, const LinePace &pace);

    bool isOpen() const override { return m_port.isOpen(); }

private:
    bool openDevice() override;
    void closeDevice() override { m_port.close(); }
    bool timedOut() override;
    QString deviceError() const override;
    int descriptor() const override { return m_port.handle(); }

    QString m_name;
    QString m_device;  // the path that the name led to when it was opened
    QSerialPort m_port;
};

}  // namespace host
