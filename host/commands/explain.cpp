// tolvane-host explain: frames in plain words, and what is wrong with them.
#include "host/frames/explain.h"
#include "host/commands/commands.h"
#include "host/output/failure.h"
#include "host/output/table.h"

#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTextStream>

#include <algorithm>

#include <unistd.h>

namespace host {

namespace {

constexpr int BytesPerLine = 32;
constexpr int Columns = 100;
constexpr char Indent[] = "   ";
constexpr int IndentWidth = 3;

// A line too long for the terminal goes on, at a blank, in the next one.
void printWrapped(QString text, QTextStream &out)
{
    const int width = Columns - IndentWidth;
    while (text.size() > width) {
        const int blank = int(text.lastIndexOf(QLatin1Char(' '), width));
        out << Indent << text.left(blank) << '\n';
        text = "  "_s + text.mid(blank + 1);
    }
    out << Indent << text << '\n';
}

// The bytes in lines of a hex dump, with a caret below the byte where the fault is seen.
void printBytes(const ExplainedFrame &frame, QTextStream &out)
{
    const int size = int(frame.bytes.size());
    const int faultAt = frame.reading.faultAt;
    for (int first = 0; first < size; first += BytesPerLine) {
        out << (first > 0         ? Indent
                : frame.isRequest ? "-> "
                                  : "<- ")
            << hexText(frame.bytes.mid(first, BytesPerLine), BytesPerLine) << '\n';
        const bool endsHere = first + BytesPerLine >= size;
        if (faultAt >= first && (faultAt < first + BytesPerLine || endsHere))
            out << Indent << QString(3 * (faultAt - first), QLatin1Char(' ')) << "^^\n";
    }
}

void print(const ExplainedFrame &frame, QTextStream &out)
{
    if (!frame.time.isEmpty())
        out << frame.time << '\n';
    if (frame.bytes.isEmpty()) {
        out << "<- no reply\n\n";
        return;
    }
    printBytes(frame, out);
    if (!frame.reading.fault.isEmpty())
        printWrapped("wrong: "_s + frame.reading.fault, out);
    if (!frame.reading.text.isEmpty())
        printWrapped(frame.reading.text, out);
    printWrapped(checksumText(frame.bytes), out);
    out << '\n';
}

QJsonObject toJson(const ExplainedFrame &frame)
{
    const QJsonValue none;
    const FrameReading &reading = frame.reading;
    return {{"time"_s, frame.time.isEmpty() ? none : QJsonValue(frame.time)},
            {"direction"_s, QLatin1String(frame.isRequest ? "request" : "reply")},
            {"bytes"_s, hexText(frame.bytes, int(frame.bytes.size()))},
            {"text"_s, reading.text},
            {"checksum"_s, checksumText(frame.bytes)},
            {"fault"_s, reading.fault.isEmpty() ? none : QJsonValue(reading.fault)},
            {"faultAt"_s, reading.fault.isEmpty() ? none : QJsonValue(reading.faultAt)}};
}

}  // namespace

int explainCommand(const CommandLine &commandLine)
{
    QStringList given = commandLine.given();
    if (given.isEmpty() && ::isatty(STDIN_FILENO) == 0)
        given.append("-"_s);
    if (given.isEmpty())
        throw Failure(
            "nothing to explain; expected bytes as hex pairs, a trace "
            "file, or - for standard input"_s,
            BadInput);

    const bool isFile =
        given.size() == 1 && (given.first() == "-"_s || QFileInfo::exists(given.first()));
    const QVector<ExplainedFrame> frames =
        isFile ? framesFromFile(given.first()) : framesFromText(given);
    const bool onlyWrong = commandLine.isSet("wrong"_s);
    QTextStream out(stdout);
    QJsonArray array;
    const auto show = [&](const ExplainedFrame &frame) {
        if (commandLine.asJson())
            array.append(toJson(frame));
        else
            print(frame, out);
    };
    int faulty = 0;
    int missing = 0;
    int shownRequest = -1;
    for (const ExplainedFrame &frame : frames) {
        const bool isWrong = !frame.reading.fault.isEmpty();
        if (frame.bytes.isEmpty())
            ++missing;
        else if (isWrong)
            ++faulty;
        if (!isWrong && onlyWrong)
            continue;
        const bool alone = onlyWrong && frame.request > shownRequest &&
                           frames[frame.request].reading.fault.isEmpty();
        if (alone)
            show(frames[frame.request]);
        shownRequest = std::max(shownRequest, frame.request);
        show(frame);
    }
    if (commandLine.asJson()) {
        printJson(QJsonDocument(array));
    } else {
        out << countText(frames.size() - missing, "frame") << ", "
            << (faulty == 0 ? "none"_s : QString::number(faulty)) << " wrong";
        if (missing > 0)
            out << "; " << countText(missing, "request") << " without a reply";
        out << '\n';
    }
    return faulty + missing == 0 ? AllRight : SomethingFailed;
}

}  // namespace host
