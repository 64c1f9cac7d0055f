// Writes the trace file.
#include "host/trace.h"

#include "host/failure.h"
#include "host/frame_text.h"

namespace host {

namespace {

QString meaningOf(const FrameReading &reading)
{
    if (reading.fault.isEmpty() || reading.text.isEmpty())
        return reading.text + reading.fault;
    return reading.text + QLatin1String("; ") + reading.fault;
}

}  // namespace

Trace::Trace(const QString &path) : m_file(path)
{
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw Failure(
            QStringLiteral("cannot write the trace \"%1\": %2").arg(path, m_file.errorString()),
            BadInput);
}

void Trace::write(const Exchange &exchange)
{
    const QByteArray request = exchange.request();
    const QDateTime end = QDateTime::currentDateTimeUtc();
    const auto at = [&](LineTime time) {
        return end.addMSecs(
            -std::chrono::duration_cast<std::chrono::milliseconds>(exchange.end - time).count());
    };
    if (!exchange.stale.isEmpty())
        line(at(exchange.begin), "<-", exchange.stale,
             QStringLiteral("thrown away: nobody waits for it"));
    line(at(exchange.begin), "->", request, meaningOf(readRequest(request)));
    for (const RefusedReply &refused : exchange.refused)
        line(at(refused.at), "<-", refused.bytes,
             QStringLiteral("refused: ") + refused.fault.text());
    const QString meaning =
        exchange.reply.isEmpty() ? QString() : readReply(exchange.reply, request).text;
    const QString fault = exchange.fault.text();
    line(end, "<-", exchange.reply,
         meaning + QLatin1String(meaning.isEmpty() || fault.isEmpty() ? "" : "; ") + fault);
    m_file.flush();  // a trace is read while it grows, and after a crash
}

void Trace::line(const QDateTime &time, const char *arrow, const QByteArray &bytes,
                 const QString &meaning)
{
    const QString hex =
        bytes.isEmpty() ? QStringLiteral("-") : hexText(bytes, int(bytes.size())).toUpper();
    m_file.write(QStringList{time.toString(Qt::ISODateWithMs), QLatin1String(arrow), hex, meaning}
                     .join(QLatin1String("  "))
                     .toUtf8() +
                 '\n');
}

}  // namespace host
