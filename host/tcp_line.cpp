// The line over TCP: connecting and blocking transfers that notice a closed connection.
#include "host/tcp_line.h"

#include "host/failure.h"

#include <QtCore/QDeadlineTimer>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace host {

using std::chrono::microseconds;
using std::chrono::milliseconds;

namespace {

constexpr int ConnectPatienceMs = 3000;
constexpr int SendPatienceMs = 1000;
constexpr unsigned int UnacknowledgedMs = 5000;
constexpr int HighestPort = 65535;

}  // namespace

TcpLine::TcpLine(const QString &server, const SerialSettings &settings) : m_settings(settings)
{
    const int colon = int(server.lastIndexOf(QLatin1Char(':')));
    const int port = server.mid(colon + 1).toInt();
    if (colon < 1 || port < 1 || port > HighestPort)
        throw Failure(QStringLiteral("--tcp \"%1\": expected HOST:PORT, such as 192.168.1.100:8000")
                          .arg(server),
                      BadInput);
    m_host = server.left(colon);
    m_port = quint16(port);
}

bool TcpLine::open()
{
    m_socket.abort();
    m_socket.connectToHost(m_host, m_port);
    if (!m_socket.waitForConnected(ConnectPatienceMs))
        return false;
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    // A server that lost its power closes nothing: its silence has to count as a lost line.
    ::setsockopt(int(m_socket.socketDescriptor()), IPPROTO_TCP, TCP_USER_TIMEOUT, &UnacknowledgedMs,
                 sizeof UnacknowledgedMs);
    return true;
}

QByteArray TcpLine::discard()
{
    QByteArray bytes = m_socket.readAll();
    while (isOpen() && m_socket.waitForReadyRead(0))
        bytes += m_socket.readAll();
    return bytes;
}

bool TcpLine::send(const QByteArray &bytes)
{
    const QDeadlineTimer deadline(SendPatienceMs);
    bool taken = isOpen() && m_socket.write(bytes) == bytes.size();
    while (taken && m_socket.bytesToWrite() > 0)
        taken = m_socket.waitForBytesWritten(int(deadline.remainingTime()));
    if (!taken)
        m_socket.abort();
    return taken;
}

QByteArray TcpLine::collect(int bytes, milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    while (isOpen() && m_socket.bytesAvailable() < bytes &&
           m_socket.waitForReadyRead(int(deadline.remainingTime()))) {
    }
    return m_socket.read(bytes);
}

microseconds TcpLine::wireTime(int bytes) const
{
    return m_settings.wireTime(bytes);
}

}  // namespace host
