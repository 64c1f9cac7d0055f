// Accepting and serving the host's connection.
#include "plc/tcp_door.h"

namespace plc {

namespace {

// Replies of a second or so; a host that reads nothing must not make the buffer grow.
constexpr qint64 MaxUnsentBytes = 16 * 1024;

}  // namespace

TcpDoor::TcpDoor()
{
    connect(&server_, &QTcpServer::newConnection, this, &TcpDoor::accept);
}

QString TcpDoor::open(const QHostAddress &address, quint16 port)
{
    if (server_.listen(address, port))
        return QString();
    return QStringLiteral("cannot listen on port %1: %2")
        .arg(QString::number(port), server_.errorString());
}

QString TcpDoor::name() const
{
    return QStringLiteral("%1:%2").arg(server_.serverAddress().toString(),
                                       QString::number(server_.serverPort()));
}

void TcpDoor::send(const QByteArray &bytes)
{
    if (host_ == nullptr || host_->bytesToWrite() > MaxUnsentBytes)
        return;
    host_->write(bytes);
    host_->flush();
}

void TcpDoor::accept()
{
    while (QTcpSocket *next = server_.nextPendingConnection()) {
        if (host_ != nullptr) {
            host_->disconnect(this);
            host_->abort();
            host_->deleteLater();
        }
        host_ = next;
        // Frames are short and wait for each other: collecting bytes would only delay them.
        host_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        connect(host_, &QTcpSocket::readyRead, this, [this] { emit received(host_->readAll()); });
        connect(host_, &QTcpSocket::disconnected, this, [this] {
            host_->deleteLater();
            host_ = nullptr;
        });
    }
}

}  // namespace plc
