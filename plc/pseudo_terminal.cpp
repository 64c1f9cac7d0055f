// Opening and serving the pseudo-terminal.
#include "plc/pseudo_terminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <QFile>
#include <QSocketNotifier>

namespace plc {

namespace {

QString failure(const char *what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what),
                                        QString::fromLocal8Bit(strerror(errno)));
}

}  // namespace

PseudoTerminal::~PseudoTerminal()
{
    // Somebody may have put a link of his own in the place of ours.
    if (!link_.isEmpty() && QFile::symLinkTarget(link_) == name_)
        QFile::remove(link_);
    if (slave_ >= 0)
        close(slave_);
    if (master_ >= 0)
        close(master_);
}

QString PseudoTerminal::open(const QString &link)
{
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0)
        return failure("cannot open a pseudo-terminal");
    char device[64];
    if (ptsname_r(master_, device, sizeof device) != 0)
        return failure("the pseudo-terminal has no name");
    // While the slave is open here, a host that closes it does not end the terminal: the next host
    // finds it, and reading the master does not fail in between.
    slave_ = ::open(device, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings;
    if (slave_ < 0 || tcgetattr(slave_, &settings) != 0)
        return failure(device);
    cfmakeraw(&settings);
    if (tcsetattr(slave_, TCSANOW, &settings) != 0)
        return failure(device);

    if (!link.isEmpty()) {
        if (symlink(device, QFile::encodeName(link).constData()) != 0)
            return failure(QFile::encodeName(link).constData());
        link_ = link;
    }
    name_ = QString::fromLatin1(device);

    const auto notifier = new QSocketNotifier(master_, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { takeIn(); });
    // A host that was killed while it held the port exclusively leaves the lock on the terminal,
    // which lives on; nobody but root could open it again.
    connect(&unlocking_, &QTimer::timeout, this, [this] { ioctl(slave_, TIOCNXCL); });
    unlocking_.start(1000);
    return QString();
}

void PseudoTerminal::send(const QByteArray &bytes)
{
    const ssize_t written = write(master_, bytes.constData(), size_t(bytes.size()));
    Q_UNUSED(written)
}

void PseudoTerminal::takeIn()
{
    char bytes[4096];
    const ssize_t count = read(master_, bytes, sizeof bytes);
    if (count > 0)
        emit received(QByteArray(bytes, int(count)));
}

}  // namespace plc
