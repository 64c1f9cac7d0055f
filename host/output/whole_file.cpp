// Replaces files by way of a temporary one beside them.
#include "host/output/whole_file.h"

#include "host/output/failure.h"

#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <cerrno>
#include <cstdio>

namespace host {

namespace {

// Qt has no words for some errors of the last write; the system has.
Failure failed(const QString &path, const QFileDevice &file, int error)
{
    const bool unnamed = file.error() == QFileDevice::NoError || file.errorString().isEmpty() ||
                         file.errorString() == "Unknown error"_s;
    return Failure(
        "cannot write %1: %2"_s.arg(path, unnamed ? qt_error_string(error) : file.errorString()),
        error == ENOENT ? BadInput : SomethingFailed);
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
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw failed(path, file, errno);
    writeAll(file, path, content);
    errno = 0;
    if (!file.commit())
        throw failed(path, file, errno);
}

}  // namespace host
