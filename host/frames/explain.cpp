// Collects frames and reads each, a reply with the request before it.
#include "host/frames/explain.h"

#include "host/frames/wire.h"
#include "host/output/failure.h"
#include "host/output/text_file.h"

#include <QtCore/QRegularExpression>

#include <cctype>
#include <climits>
#include <utility>

namespace host {

namespace {

const QString Gap = "  "_s;  // between the parts of a line
const QString Refused = "refused: "_s;

bool opens(char byte)
{
    return byte == Stx || byte == Ack;
}

bool closes(char byte)
{
    return byte == Etx || byte == Eot;
}

// Reads frames in the order in which they travelled; replies belong to the request before them.
class Reader
{
public:
    /** refused: why the host took the frame for no reply; empty where it did. */
    void add(const QString &time, bool isRequest, const QByteArray &bytes,
             const QString &refused = QString())
    {
        const bool isAsked = m_request >= 0 && !m_answered;
        ExplainedFrame frame{time, isRequest, bytes, {}, isRequest ? -1 : m_request};
        frame.reading =
            isRequest
                ? readRequest(bytes, INT_MAX)
                : readReply(bytes, isAsked ? m_frames[m_request].bytes : QByteArray(), INT_MAX);
        if (frame.reading.fault.isEmpty() && !refused.isEmpty())
            frame.reading.fault = "refused by the host: "_s + refused;
        // A request counts for one good reply.
        m_answered = !isRequest && (m_answered || frame.reading.fault.isEmpty());
        if (isRequest)
            m_request = int(m_frames.size());
        m_frames.append(frame);
    }

    /** Nothing came for the last request, if there was one. */
    void addMissingReply()
    {
        if (!m_frames.isEmpty() && m_frames.last().isRequest)
            add(QString(), false, QByteArray());
    }

    const QVector<ExplainedFrame> &frames() const { return m_frames; }

private:
    QVector<ExplainedFrame> m_frames;
    int m_request = -1;       // place of the latest
    bool m_answered = false;  // it was
};

bool isDigit(QChar sign)
{
    return sign.unicode() < 0x80 && std::isxdigit(sign.unicode()) != 0;
}

// The hex pairs that a text begins with, one blank or none between them; `end` is behind the last.
QByteArray leadingPairs(const QString &text, int *end)
{
    QByteArray bytes;
    *end = 0;
    for (int at = 0; at + 1 < int(text.size()) && isDigit(text[at]) && isDigit(text[at + 1]);) {
        bytes += char(text.mid(at, 2).toInt(nullptr, 16));
        *end = at + 2;
        at = *end + int(text.mid(*end, 1) == " "_s);
    }
    return bytes;
}

// Empty when the text is no hex pairs.
QByteArray bytesOf(const QString &text)
{
    int end = 0;
    const QString pairs = text.simplified();
    const QByteArray bytes = leadingPairs(pairs, &end);
    return end == int(pairs.size()) ? bytes : QByteArray();
}

// A closing byte ends a frame only where another frame opens behind it: a frame that is wrong
// inside stays whole.
QList<QByteArray> split(const QByteArray &bytes)
{
    QList<QByteArray> frames;
    int begin = 0;
    for (int i = 1; i < int(bytes.size()); ++i) {
        if (closes(bytes[i - 1]) && opens(bytes[i])) {
            frames.append(bytes.mid(begin, i - begin));
            begin = i;
        }
    }
    frames.append(bytes.mid(begin));
    return frames;
}

/** Reads what listened on a line, line by line. */
class Listing
{
public:
    /** Returns false when the line is none that is known. */
    bool take(const QString &line)
    {
        static const QRegularExpression socatHead(
            "^([<>]) (\\S+ \\S+)  length=[0-9]+ from=[0-9]+ to=[0-9]+$"_s);
        static const QRegularExpression socatNews("^\\S+ \\S+ socat\\["_s);
        if (line.isEmpty() || line == "--"_s || socatNews.match(line).hasMatch())
            return true;
        QRegularExpressionMatch match = tracedHead().match(line);
        const QString rest = line.mid(match.capturedLength());
        const QByteArray bytes = bytesOf(rest.section(Gap, 0, 0));
        if (match.hasMatch() && (!bytes.isEmpty() || rest.startsWith(QLatin1Char('-')))) {
            const QString meaning = rest.section(Gap, 1);
            flush();
            m_reader.add(match.captured(1), match.captured(2) == "->"_s, bytes,
                         meaning.startsWith(Refused) ? meaning.mid(Refused.size()) : QString());
            return true;
        }
        match = socatHead.match(line);
        if (match.hasMatch()) {
            const QChar arrow = match.captured(1).at(0);
            if (arrow != m_arrow)
                flush();
            m_arrow = arrow;
            m_time = match.captured(2);
            m_chunkBegins = true;
            return true;
        }
        if (!bytes.isEmpty())
            takeBytes(bytes);
        return !bytes.isEmpty();
    }

    /** A last line that breaks off: the bytes that it still holds, if any. */
    void takeCut(const QString &line)
    {
        flush();
        const QRegularExpressionMatch match = tracedHead().match(line);
        int end = 0;
        const QString rest = line.mid(match.capturedLength());
        const QByteArray bytes = leadingPairs(rest, &end);
        const bool isRequest =
            match.hasMatch() ? match.captured(2) == "->"_s : !bytes.startsWith(Ack);
        if (!bytes.isEmpty() && (match.hasMatch() || rest.size() - end <= 2))
            m_reader.add(match.captured(1), isRequest, bytes);
    }

    /** All frames; isCut: the last line had no end. */
    QVector<ExplainedFrame> frames(bool isCut)
    {
        flush();
        QVector<ExplainedFrame> frames = m_reader.frames();
        if (isCut && !frames.isEmpty() && !frames.last().reading.fault.isEmpty())
            frames.last().reading.fault += " (the last line is cut)"_s;
        return frames;
    }

private:
    static const QRegularExpression &tracedHead()
    {
        static const QRegularExpression head("^(\\S+)\\s+(->|<-)\\s+"_s);
        return head;
    }

    // Frames travel in pieces: a piece goes on with the frame before it unless that has ended or
    // this opens one.
    void takeBytes(const QByteArray &bytes)
    {
        const bool isPasted = m_arrow.isNull();
        if ((m_chunkBegins || isPasted) && !m_run.isEmpty() &&
            (closes(m_run.back()) || opens(bytes.front())))
            flush();
        m_chunkBegins = false;
        if (m_run.isEmpty())
            m_runTime = m_time;
        m_run += bytes;
    }

    void flush()
    {
        if (m_run.isEmpty())
            return;
        for (const QByteArray &frame : split(m_run)) {
            if (frame[0] == Stx)
                m_requestArrow = m_arrow;
            const bool isRequest =
                frame[0] == Stx || (frame[0] != Ack && m_arrow == m_requestArrow);
            if (isRequest)
                m_reader.addMissingReply();
            m_reader.add(m_runTime, isRequest, frame);
        }
        m_run.clear();
    }

    Reader m_reader;
    QByteArray m_run;  // bytes in one direction that are no frames yet
    QString m_runTime;
    QString m_time;  // of the latest piece
    QChar m_arrow;   // its direction
    QChar m_requestArrow = QLatin1Char('>');
    bool m_chunkBegins = false;
};

}  // namespace

QVector<ExplainedFrame> framesFromText(const QStringList &arguments)
{
    QList<QByteArray> runs;
    for (const QString &argument : arguments) {
        const QByteArray bytes = bytesOf(argument);
        if (bytes.isEmpty())
            throw Failure(
                "%1 is no frame; expected bytes as hex pairs, such as "
                "\"02 72 61\", or a trace file"_s.arg(quoted(argument)),
                BadInput);
        const bool begins =
            runs.isEmpty() ||
            (bytes.size() > 1 && (opens(bytes.front()) || closes(runs.last().back())));
        if (begins)
            runs.append(QByteArray());
        runs.last() += bytes;
    }
    Reader reader;
    for (const QByteArray &run : std::as_const(runs))
        for (const QByteArray &frame : split(run))
            reader.add(QString(), frame[0] != Ack, frame);
    return reader.frames();
}

QVector<ExplainedFrame> framesFromFile(const QString &path)
{
    const QString place = path == "-"_s ? "standard input"_s : path;
    const QStringList lines = readLines(path, "trace"_s);
    Listing listing;
    for (int i = 0; i < int(lines.size()); ++i) {
        if (listing.take(lines[i]))
            continue;
        if (i + 1 < int(lines.size()) || i == 0)
            throw Failure(
                "%1:%2: %3: expected what --trace or socat -x writes, "
                "or bytes as hex pairs"_s.arg(place, QString::number(i + 1), quoted(lines[i])),
                BadInput);
        listing.takeCut(lines[i]);  // no line's end is behind it
    }
    const QVector<ExplainedFrame> frames = listing.frames(!lines.last().isEmpty());
    if (frames.isEmpty())
        throw Failure("there is no frame in %1"_s.arg(place), BadInput);
    return frames;
}

}  // namespace host
