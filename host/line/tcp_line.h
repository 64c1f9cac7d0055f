// A serial device server on the network, or a simulated controller behind a TCP port, as the line.
#pragma once

#include "host/line/device_line.h"

#include <QtNetwork/QTcpSocket>

namespace host {

class TcpLine : public DeviceLine
{
public:
    /** server: "host:port"; pace: of the line behind it. Throws Failure (bad input). */
    TcpLine(const QString &server, const LinePace &pace);

    bool isOpen() const override { return m_socket.state() == QAbstractSocket::ConnectedState; }

private:
    bool openDevice() override;
    void closeDevice() override { m_socket.abort(); }
    bool timedOut() override;
    QString deviceError() const override { return m_socket.errorString(); }
    int descriptor() const override { return int(m_socket.socketDescriptor()); }

    QTcpSocket m_socket;
    QString m_host;
    quint16 m_port = 0;
};

}  // namespace host
