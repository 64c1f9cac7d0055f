// Opening and serving the pseudo-terminal.
#include "plc/pseudo_terminal.h"
#include "plc/literals.h"

#include <QtCore/QFile>
#include <QtCore/QSocketNotifier>

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace plc {

namespace {

QString failure(const char *what)
{
    return "%1: %2"_s.arg(QLatin1String(what), QString::fromLocal8Bit(strerror(errno)));
}

}  // namespace

PseudoTerminal::~PseudoTerminal()
{
    // Somebody may have put a link of his own in the place of ours.
    if (!m_link.isEmpty() && QFile::symLinkTarget(m_link) == m_name)
        QFile::remove(m_link);
    if (m_slave >= 0)
        close(m_slave);
    if (m_master >= 0)
        close(m_master);
}

QString PseudoTerminal::open(const QString &link)
{
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0)
        return failure("cannot open a pseudo-terminal");
    char device[64];
    if (ptsname_r(m_master, device, sizeof device) != 0)
        return failure("the pseudo-terminal has no name");
    // While the slave is open here, a host that closes it does not end the terminal: the next host
    // finds it, and reading the master does not fail in between.
    m_slave = ::open(device, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings;
    if (m_slave < 0 || tcgetattr(m_slave, &settings) != 0)
        return failure(device);
    cfmakeraw(&settings);
    if (tcsetattr(m_slave, TCSANOW, &settings) != 0)
        return failure(device);

    if (!link.isEmpty()) {
        if (symlink(device, QFile::encodeName(link).constData()) != 0)
            return failure(QFile::encodeName(link).constData());
        m_link = link;
    }
    m_name = QString::fromLatin1(device);

    const auto notifier = new QSocketNotifier(m_master, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { takeIn(); });
    // A host that was killed while it held the port exclusively leaves the lock on the terminal,
    // which lives on; nobody but root could open it again.
    connect(&m_unlocking, &QTimer::timeout, this, [this] { ioctl(m_slave, TIOCNXCL); });
    m_unlocking.start(1000);
    return QString();
}

void PseudoTerminal::send(const QByteArray &bytes)
{
    const ssize_t written = write(m_master, bytes.constData(), size_t(bytes.size()));
    Q_UNUSED(written)
}

void PseudoTerminal::takeIn()
{
    char bytes[4096];
    const ssize_t count = read(m_master, bytes, sizeof bytes);
    if (count > 0)
        emit received(QByteArray(bytes, int(count)));
}

}  // namespace plc
