// Replaces files by way of a temporary one beside them.
#include "host/output/whole_file.h"

#include "host/output/failure.h"

#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <cerrno>
#include <cstdio>

#include <sys/stat.h>
#include <unistd.h>

namespace host {

namespace {

// Qt has no words for some errors of the last write; the system has.
Failure failed(const QString &path, const QFileDevice &file, int error)
{
    const bool unnamed = file.error() == QFileDevice::NoError || file.errorString().isEmpty() ||
                         file.errorString() == "Unknown error"_s;
    return Failure(
        "cannot write %1: %2"_s.arg(path, unnamed ? qt_error_string(error) : file.errorString()));
}

// Only a flush tells whether the bytes found room: on its own neither write() nor commit() does.
void writeAll(QFileDevice &file, const QString &path, const QByteArray &content)
{
    errno = 0;
    if (file.write(content) != content.size() || !file.flush())
        throw failed(path, file, errno);
}

}  // namespace

void replaceFile(const QString &path, const QByteArray &content)
{
    const bool toStandardOutput = path == "-"_s;
    if (toStandardOutput || (QFileInfo::exists(path) && !QFileInfo(path).isFile())) {
        QFile file(path);
        if (!(toStandardOutput ? file.open(stdout, QIODevice::WriteOnly)
                               : file.open(QIODevice::WriteOnly)))
            throw failed(path, file, errno);
        writeAll(file, path, content);
        return;
    }
    struct stat old = {};
    const bool isThere = ::stat(QFile::encodeName(path).constData(), &old) == 0;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw failed(path, file, errno);
    // Whoever may not give files away keeps what is his; a group is often allowed.
    if (isThere && ::fchown(file.handle(), old.st_uid, old.st_gid) != 0 &&
        ::fchown(file.handle(), uid_t(-1), old.st_gid) != 0)
        errno = 0;
    writeAll(file, path, content);
    errno = 0;
    if (!file.commit())
        throw failed(path, file, errno);
}

}  // namespace host
