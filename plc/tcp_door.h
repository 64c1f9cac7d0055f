// A TCP port in place of a serial one, as a serial device server offers it.
#ifndef PLC_TCP_DOOR_H
#define PLC_TCP_DOOR_H

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

#include "plc/door.h"

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

    QTcpServer server_;
    QTcpSocket *host_ = nullptr;  ///< the host's connection, a child of server_, or null
};

}  // namespace plc

#endif
