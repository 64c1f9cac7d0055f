// Lays the demo's output out in 100 columns.
#include "host/tour/report.h"

#include "host/frames/frame_text.h"
#include "host/output/table.h"

namespace host {

namespace {

constexpr int FrameBytesShown = 14;  // a whole read request
constexpr int HexColumn = 3 * FrameBytesShown - 1;
constexpr int NameColumn = 9;
constexpr int RowColumns = 96;
constexpr int Indent = 3;
constexpr int MeaningColumn = 51;
constexpr int WordsInRequest = 2;
constexpr int WordsInReply = 4;

QString shortened(const QString &text)
{
    return text.size() <= MeaningColumn ? text : text.left(MeaningColumn - 3) + "...";
}

}  // namespace

QString Report::text(const QVector<int> &values)
{
    QStringList texts;
    for (const int value : values)
        texts.append(QString::number(value));
    return texts.join(", "_s);
}

void Report::step(const QString &title, const QString &intent)
{
    m_out << '\n' << ++m_steps << ". " << title << '\n' << "   " << intent << '\n' << Qt::flush;
}

void Report::line(const QString &text)
{
    m_out << (text.isEmpty() ? text : QString(Indent, QLatin1Char(' ')) + text) << '\n'
          << Qt::flush;
}

void Report::item(const QString &name, const QString &text)
{
    QString row = name.leftJustified(NameColumn - 1);
    for (const QString &word : text.split(QLatin1Char(' '))) {
        if (row.size() + 1 + word.size() > RowColumns) {
            line(row);
            row = QString(NameColumn - 1, QLatin1Char(' '));
        }
        row += QLatin1Char(' ') + word;
    }
    line(row);
}

void Report::exchange(const Exchange &exchange)
{
    if (!exchange.stale.isEmpty())
        line("thrown away before sending: %1 that nobody waits for any more"_s.arg(
            countText(exchange.stale.size(), "byte")));
    const QByteArray request = exchange.request();
    frame("->", request, readRequest(request, WordsInRequest).text);
    for (const RefusedReply &refused : exchange.refused) {
        const bool askedTwice = !refused.fault;
        frame("<-", refused.bytes,
              askedTwice ? readReply(refused.bytes, request, WordsInReply).text
                         : refused.fault.text());
        if (askedTwice)
            frame("->", request, "again: merged only if twice alike"_s);
    }
    if (exchange.reply.isEmpty())
        line("<- "_s + exchange.fault.text());
    else
        frame("<-", exchange.reply,
              exchange.fault ? exchange.fault.text()
                             : readReply(exchange.reply, request, WordsInReply).text);
}

void Report::frame(const char *arrow, const QByteArray &bytes, const QString &meaning)
{
    line("%1 %2  %3"_s.arg(QLatin1String(arrow),
                           hexText(bytes, FrameBytesShown).leftJustified(HexColumn),
                           shortened(meaning)));
}

void Report::verdict(const QString &what, const QString &got, const QString &expected)
{
    ++m_checks;
    if (got == expected)
        return line("ok     "_s + what);
    ++m_wrong;
    line("WRONG  %1: expected %2, got %3"_s.arg(what, shortened(expected), shortened(got)));
}

}  // namespace host
