// Finds out what the system tells Qt, but Qt does not tell on.
#include "host/line/port_device.h"
#include "host/output/failure.h"
#include "plc/literals.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <grp.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {

namespace {

const QString DeviceFolder = "/dev/"_s;

// Qt takes the first of these folders that exists for its lock files.
constexpr const char *LockFolders[] = {"/var/lock",         "/etc/locks", "/var/spool/locks",
                                       "/var/spool/uucp",   "/tmp",       "/var/tmp",
                                       "/var/lock/lockdev", "/run/lock"};

QStringList locksOf(const QString &device)
{
    QString name = device.startsWith(DeviceFolder) ? device.mid(DeviceFolder.size()) : device;
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    QStringList locks;
    for (const char *folder : LockFolders)
        locks += "%1/LCK..%2"_s.arg(QLatin1String(folder), name);
    return locks;
}

// Who holds a lock on the device, and which; empty when nobody that lives does.
QString lockText(const QString &device)
{
    const QString strange = strangeLock(device);
    if (!strange.isEmpty())
        return "the lock %1 is no file"_s.arg(strange);
    for (const QString &path : locksOf(device)) {
        QFile lock(path);
        if (!lock.open(QIODevice::ReadOnly))
            continue;
        const QByteArrayList lines = lock.read(1024).split('\n');
        const int process = lines[0].trimmed().toInt();
        if (process > 0 && (::kill(process, 0) == 0 || errno == EPERM))
            return "in use: process %1 (%2) holds the lock %3"_s.arg(
                QString::number(process),
                printable(QString::fromLocal8Bit(lines.value(1).left(40))), path);
    }
    return QString();
}

QString groupOf(const QByteArray &path)
{
    struct stat about;
    if (::stat(path.constData(), &about) != 0)
        return QString();
    const group *owner = ::getgrgid(about.st_gid);
    return owner && about.st_gid != 0 ? QString::fromLocal8Bit(owner->gr_name) : "dialout"_s;
}

}  // namespace

QString portDevice(const QString &name)
{
    const QFileInfo here(name);  // a link whose device has gone is one, too
    const QFileInfo inDev(DeviceFolder + name);
    const bool isHere =
        name.contains(QLatin1Char('/')) || ((here.exists() || here.isSymLink()) && !inDev.exists());
    const QFileInfo &file = isHere ? here : inDev;
    const QString device = file.canonicalFilePath();
    return device.isEmpty() ? QDir::cleanPath(file.absoluteFilePath()) : device;
}

QString strangeLock(const QString &device)
{
    for (const QString &lock : locksOf(device))
        if (QFileInfo::exists(lock) && !QFileInfo(lock).isFile())
            return lock;
    return QString();
}

QString portTrouble(const QString &file, const QString &said)
{
    const QByteArray path = QFile::encodeName(file);
    if (::access(path.constData(), F_OK) != 0)
        return QFileInfo(file).isSymLink() ? "the device that %1 leads to has gone"_s.arg(file)
                                           : "there is no device %1"_s.arg(file);
    if (::access(path.constData(), R_OK | W_OK) != 0)
        return "permission denied; members of the group %1 may open it: "
               "\"sudo adduser $USER %1\", then log in again"_s.arg(groupOf(path));
    QString locked = lockText(file);
    if (!locked.isEmpty())
        return locked;
    const int descriptor = ::open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    const int error = descriptor < 0 ? errno : 0;
    const bool isOther = descriptor >= 0 && ::isatty(descriptor) == 0;
    if (descriptor >= 0)
        ::close(descriptor);
    if (isOther)
        return "it is no serial port"_s;
    return error == EBUSY ? "in use: another program has opened it exclusively "
                            "(TIOCEXCL)"_s
                          : said;
}

}  // namespace host
