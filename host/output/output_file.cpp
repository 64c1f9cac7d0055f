// Recognises files, follows their names, and writes.
#include "host/output/output_file.h"

#include "host/output/failure.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QSaveFile>

#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace host {

namespace {

constexpr int LookedAt = 64 * 1024;

struct LastHeading
{
    QByteArray text;
    bool isCut = false;  // the last line, by a full disk or a crash
};

// Headings may stand anywhere: a log is gone on with when its columns have changed.
LastHeading findHeading(const QString &path, const QByteArray &start)
{
    QFile file(path);
    LastHeading last;
    if (!file.open(QIODevice::ReadOnly))
        throw Failure("cannot read %1: %2"_s.arg(quoted(path), file.errorString()));
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        last.isCut = !line.endsWith('\n');
        if (line.startsWith(start))
            last.text = line.trimmed();
    }
    return last;
}

bool openToWrite(QFile &file, QIODevice::OpenMode how = QIODevice::NotOpen)
{
    how |= QIODevice::WriteOnly;
    return file.fileName() == "-"_s ? file.open(stdout, how) : file.open(how);
}

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

void refuseOtherFile(const QString &path, const FileKind &kind)
{
    if (path == "-"_s || !QFileInfo(path).isFile())
        return;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure("cannot read %1: %2"_s.arg(quoted(path), file.errorString()));
    const QByteArray begin = file.read(LookedAt);
    const QRegularExpression form(QLatin1String(kind.content),
                                  QRegularExpression::DotMatchesEverythingOption);
    if (!begin.isEmpty() &&
        !form.match(QString::fromLatin1(begin.constData(), int(begin.size()))).hasMatch())
        throw Failure("%1 is no %2: it begins with %3; it was not touched"_s.arg(
                          quoted(path), QLatin1String(kind.name),
                          quoted(QString::fromUtf8(begin.left(begin.indexOf('\n'))).trimmed())),
                      BadInput);
}

OutputFile::OutputFile(const QString &path, const FileKind &kind, const QString &heading)
    : m_file(path), m_kind(kind), m_heading(heading)
{
    open();
    if (m_isRegular && heading.isEmpty())
        m_file.resize(0);
}

void OutputFile::open()
{
    const QString path = m_file.fileName();
    m_file.close();
    refuseOtherFile(path, m_kind);
    const QFileInfo info(path);
    // Pipes and devices have no end to go to.
    m_isRegular = path != "-"_s && (info.isFile() || !info.exists());
    LastHeading last;
    if (m_isRegular && info.size() > 0 && !m_heading.isEmpty())
        last = findHeading(path, m_heading.section(QLatin1Char(','), 0, 0).toUtf8() + ',');
    if (!openToWrite(m_file, m_isRegular ? QIODevice::Unbuffered | QIODevice::Append
                                         : QIODevice::Unbuffered))
        throw Failure("cannot write %1: %2"_s.arg(quoted(path), m_file.errorString()));
    if (last.isCut)
        put("\n"_s);
    if (!m_heading.isEmpty() && QString::fromUtf8(last.text) != m_heading)
        put(m_heading + QLatin1Char('\n'));
}

void OutputFile::reopen()
{
    if (m_isRegular)
        open();
}

void OutputFile::write(const QString &text)
{
    struct stat named = {};
    struct stat written = {};
    if (m_isRegular && ::fstat(m_file.handle(), &written) == 0) {
        const bool isThere = ::stat(QFile::encodeName(m_file.fileName()).constData(), &named) == 0;
        if (!isThere || named.st_ino != written.st_ino || named.st_dev != written.st_dev)
            open();
        else if (written.st_size == 0 && !m_heading.isEmpty())
            put(m_heading + QLatin1Char('\n'));
    }
    put(text);
}

void OutputFile::put(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    // What does not fit is tried again: only then the system tells why.
    qint64 done = 0;
    qint64 written = 0;
    while (done < bytes.size() &&
           (written = m_file.write(bytes.constData() + done, bytes.size() - done)) > 0)
        done += written;
    if (done < bytes.size() || !m_file.flush())
        throw Failure("cannot write %1: %2"_s.arg(
            m_file.fileName() == "-"_s ? "to standard output"_s : quoted(m_file.fileName()),
            m_file.errorString()));
}

void replaceFile(const QString &path, const QByteArray &content)
{
    if (path == "-"_s || (QFileInfo::exists(path) && !QFileInfo(path).isFile())) {
        QFile file(path);
        if (!openToWrite(file))
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
