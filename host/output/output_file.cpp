// Writes without a buffer of its own: what was written is either in the file or refused.
#include "host/output/output_file.h"

#include "host/output/failure.h"

#include <QtCore/QFileInfo>

#include <cstdio>

namespace host {

namespace {

constexpr char HeadingStart[] = "time,";

struct LastHeading
{
    QByteArray text;
    bool isCut = false;  // the last line, by a full disk or a crash
};

// Headings may stand anywhere: a log is gone on with when its columns have changed.
LastHeading findHeading(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure("cannot read \"%1\": %2"_s.arg(path, file.errorString()), BadInput);
    LastHeading last;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        last.isCut = !line.endsWith('\n');
        if (line.startsWith(HeadingStart))
            last.text = line.trimmed();
        else if (last.text.isEmpty())
            throw Failure(
                "\"%1\" is no log: its first line is \"%2\", expected one that "
                "begins with \"%3\"; it was not touched"_s.arg(
                    path, QString::fromUtf8(line.left(60)).trimmed(), QLatin1String(HeadingStart)),
                BadInput);
    }
    return last;
}

}  // namespace

OutputFile::OutputFile(const QString &path, Mode mode) : m_file(path)
{
    const QIODevice::OpenMode how = QIODevice::WriteOnly | QIODevice::Unbuffered;
    const QFileInfo info(path);
    // Pipes and devices have no end to go to.
    const bool append = mode == Append && (info.isFile() || !info.exists());
    const bool open = path == "-"_s
                          ? m_file.open(stdout, how)
                          : m_file.open(how | (append ? QIODevice::Append : QIODevice::Truncate));
    if (!open)
        throw Failure("cannot write \"%1\": %2"_s.arg(path, m_file.errorString()), BadInput);
}

void OutputFile::write(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    // What does not fit is tried again: only then the system tells why.
    qint64 done = 0;
    qint64 written = 0;
    while (done < bytes.size() &&
           (written = m_file.write(bytes.constData() + done, bytes.size() - done)) > 0)
        done += written;
    if (done == bytes.size() && m_file.flush())
        return;
    const QString name = m_file.fileName();
    throw Failure("cannot write %1: %2"_s.arg(
        name.isEmpty() ? "to standard output"_s : QLatin1Char('"') + name + QLatin1Char('"'),
        m_file.errorString()));
}

std::unique_ptr<OutputFile> openLog(const QString &path, const QString &heading)
{
    LastHeading last;
    const QFileInfo info(path);
    // Pipes and devices have nothing to be read back.
    if (path != "-"_s && info.isFile() && info.size() > 0)
        last = findHeading(path);
    auto file = std::make_unique<OutputFile>(path, OutputFile::Append);
    if (last.isCut)
        file->write("\n"_s);
    if (QString::fromUtf8(last.text) != heading)
        file->write(heading + QLatin1Char('\n'));
    return file;
}

}  // namespace host
