// Collects frames and reads each, a reply with the request before it.
#include "host/explain/frames.h"

#include "host/failure.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <climits>
#include <utility>

namespace host {

namespace {

constexpr char Etx = 0x03;
constexpr char Eot = 0x04;
constexpr char Ack = 0x06;

// Reads frames in the order in which they travelled. A request counts for one reply.
class Reader
{
public:
    void add(const QString &time, bool isRequest, const QByteArray &bytes)
    {
        ExplainedFrame frame{time, isRequest, bytes, {}};
        if (isRequest)
            frame.reading = readRequest(bytes, INT_MAX);
        else
            frame.reading = readReply(bytes, std::exchange(m_request, QByteArray()), INT_MAX);
        if (isRequest)
            m_request = bytes;
        m_frames.append(frame);
    }

    const QVector<ExplainedFrame> &frames() const { return m_frames; }

private:
    QVector<ExplainedFrame> m_frames;
    QByteArray m_request;
};

// Empty when the text is no hex pairs.
QByteArray bytesOf(const QString &text)
{
    static const QRegularExpression pairs(QStringLiteral("^\\s*(?:[0-9A-Fa-f]{2}\\s*)+$"));
    return pairs.match(text).hasMatch() ? QByteArray::fromHex(text.toLatin1()) : QByteArray();
}

// A closing byte ends a frame only where another frame opens behind it: a frame that is wrong
// inside stays whole.
QList<QByteArray> split(const QByteArray &bytes)
{
    QList<QByteArray> frames;
    int begin = 0;
    for (int i = 1; i < int(bytes.size()); ++i) {
        const bool closes = bytes[i - 1] == Etx || bytes[i - 1] == Eot;
        if (closes && (bytes[i] == Ack || bytes[i] == Etx - 1)) {
            frames.append(bytes.mid(begin, i - begin));
            begin = i;
        }
    }
    frames.append(bytes.mid(begin));
    return frames;
}

}  // namespace

QVector<ExplainedFrame> framesFromText(const QStringList &arguments)
{
    QList<QByteArray> runs;
    bool joins = false;  // the argument before was a single byte
    for (const QString &argument : arguments) {
        const QByteArray bytes = bytesOf(argument);
        if (bytes.isEmpty())
            throw Failure(QStringLiteral("\"%1\" is no frame; expected bytes as hex pairs, such as "
                                         "\"02 72 61\", or a trace file")
                              .arg(argument),
                          BadInput);
        const bool single = bytes.size() == 1;
        if (single && joins)
            runs.last() += bytes;
        else
            runs.append(bytes);
        joins = single;
    }
    Reader reader;
    for (const QByteArray &run : std::as_const(runs))
        for (const QByteArray &frame : split(run))
            reader.add(QString(), frame[0] != Ack, frame);
    return reader.frames();
}

QVector<ExplainedFrame> framesFromTrace(const QString &path)
{
    static const QRegularExpression form(
        QStringLiteral("^(\\S+)\\s+(->|<-)\\s+(-|[0-9A-F]{2}(?: [0-9A-F]{2})*)(?:  .*)?$"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()), BadInput);
    Reader reader;
    for (int number = 1; !file.atEnd(); ++number) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.isEmpty())
            continue;
        const QRegularExpressionMatch match = form.match(line);
        if (!match.hasMatch())
            throw Failure(QStringLiteral("%1:%2: \"%3\": expected time, -> or <-, and bytes as hex "
                                         "pairs")
                              .arg(path)
                              .arg(number)
                              .arg(line.left(60)),
                          BadInput);
        reader.add(match.captured(1), match.captured(2) == QLatin1String("->"),
                   bytesOf(match.captured(3)));
    }
    return reader.frames();
}

}  // namespace host
