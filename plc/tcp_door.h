// A TCP port in place of a serial one, as a serial device server offers it.
#pragma once

#include "plc/door.h"

#include <QtNetwork/QHostAddress>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

namespace plc {

/**
 * Serves one host at a time. A new connection takes the place of the one before, so that a host
 * whose connection died without a word gets in again.
 */
class TcpDoor : public Door
{
    Q_OBJECT

public:
    TcpDoor();

    /** Listens; port 0 takes any free one. Returns an empty text, or what went wrong. */
    QString open(const QHostAddress &address, quint16 port);

    QString name() const override;
    void send(const QByteArray &bytes) override;

private:
    void accept();

    QTcpServer m_server;
    QTcpSocket *m_host = nullptr;  ///< the host's connection, a child of m_server, or null
};

}  // namespace plc
