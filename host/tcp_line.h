// A serial device server on the network, or a simulated controller behind a TCP port, as the line.
#ifndef TOLVANE_HOST_TCP_LINE_H
#define TOLVANE_HOST_TCP_LINE_H

#include "host/line.h"
#include "host/serial_line.h"

#include <QtNetwork/QTcpSocket>

namespace host {

/** Blocking use of QTcpSocket on the calling thread; no event loop is needed. */
class TcpLine : public Line
{
public:
    /** server: "host:port"; settings: of the serial line behind it. Throws Failure (bad input). */
    TcpLine(const QString &server, const SerialSettings &settings);

    bool open() override;
    bool isOpen() const override { return m_socket.state() == QAbstractSocket::ConnectedState; }
    QString errorText() const override { return m_socket.errorString(); }
    QByteArray discard() override;
    bool send(const QByteArray &bytes) override;
    QByteArray collect(int bytes, std::chrono::milliseconds timeout) override;
    std::chrono::microseconds wireTime(int bytes) const override;

private:
    QTcpSocket m_socket;
    QString m_host;
    quint16 m_port = 0;
    SerialSettings m_settings;
};

}  // namespace host

#endif
