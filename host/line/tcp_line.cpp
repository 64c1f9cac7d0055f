// Connecting to a device server, and how its end is noticed.
#include "host/line/tcp_line.h"

#include "host/output/failure.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace host {

namespace {

constexpr int ConnectPatienceMs = 3000;
constexpr unsigned int UnacknowledgedMs = 5000;
constexpr int HighestPort = 65535;

}  // namespace

TcpLine::TcpLine(const QString &server, const LinePace &pace) : DeviceLine(m_socket, pace)
{
    const int colon = int(server.lastIndexOf(QLatin1Char(':')));
    const int port = server.mid(colon + 1).toInt();
    if (colon < 1 || port < 1 || port > HighestPort)
        throw Failure("--tcp \"%1\": expected HOST:PORT, such as 192.168.1.100:8000"_s.arg(server),
                      BadInput);
    m_host = server.left(colon);
    if (m_host.startsWith(QLatin1Char('[')) && m_host.endsWith(QLatin1Char(']')))
        m_host = m_host.mid(1, colon - 2);  // [::1]:8000
    m_port = quint16(port);
    m_socket.setReadBufferSize(MostBuffered);
}

bool TcpLine::openDevice()
{
    m_socket.connectToHost(m_host, m_port);
    if (!m_socket.waitForConnected(ConnectPatienceMs))
        return false;
    m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    // A server that lost its power closes nothing: its silence has to count as a lost line.
    ::setsockopt(int(m_socket.socketDescriptor()), IPPROTO_TCP, TCP_USER_TIMEOUT, &UnacknowledgedMs,
                 sizeof UnacknowledgedMs);
    return true;
}

bool TcpLine::timedOut()
{
    return isOpen() && m_socket.error() == QAbstractSocket::SocketTimeoutError;
}

}  // namespace host
