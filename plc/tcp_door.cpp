// Accepting and serving the host's connection.
#include "plc/tcp_door.h"
#include "plc/literals.h"

namespace plc {

namespace {

// Replies of a second or so; a host that reads nothing must not make the buffer grow.
constexpr qint64 MaxUnsentBytes = 16 * 1024;

}  // namespace

TcpDoor::TcpDoor()
{
    connect(&m_server, &QTcpServer::newConnection, this, &TcpDoor::accept);
}

QString TcpDoor::open(const QHostAddress &address, quint16 port)
{
    if (m_server.listen(address, port))
        return QString();
    return "cannot listen on port %1: %2"_s.arg(QString::number(port), m_server.errorString());
}

QString TcpDoor::name() const
{
    return "%1:%2"_s.arg(m_server.serverAddress().toString(),
                         QString::number(m_server.serverPort()));
}

void TcpDoor::send(const QByteArray &bytes)
{
    if (m_host == nullptr || m_host->bytesToWrite() > MaxUnsentBytes)
        return;
    m_host->write(bytes);
    m_host->flush();
}

void TcpDoor::accept()
{
    while (QTcpSocket *next = m_server.nextPendingConnection()) {
        if (m_host != nullptr) {
            m_host->disconnect(this);
            m_host->abort();
            m_host->deleteLater();
        }
        m_host = next;
        // Frames are short and wait for each other: collecting bytes would only delay them.
        m_host->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        connect(m_host, &QTcpSocket::readyRead, this, [this] { emit received(m_host->readAll()); });
        connect(m_host, &QTcpSocket::disconnected, this, [this] {
            m_host->deleteLater();
            m_host = nullptr;
        });
    }
}

}  // namespace plc
