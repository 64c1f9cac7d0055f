// Writes the trace file.
#include "host/exchange/trace.h"

#include "host/frames/frame_text.h"

namespace host {

namespace {

constexpr FileKind TraceFile{"trace", "^[-0-9T:.]+(Z|[-+:0-9]+)  (->|<-)  "};

QString meaningOf(const FrameReading &reading)
{
    if (reading.fault.isEmpty() || reading.text.isEmpty())
        return reading.text + reading.fault;
    return reading.text + "; "_s + reading.fault;
}

}  // namespace

Trace::Trace(const QString &path, Zone zone) : m_file(path, TraceFile), m_zone(zone)
{
}

void Trace::write(const Exchange &exchange)
{
    const QByteArray request = exchange.request();
    const QDateTime end = QDateTime::currentDateTimeUtc();
    const auto at = [&](LineTime time) {
        return end.addMSecs(
            -std::chrono::duration_cast<std::chrono::milliseconds>(exchange.end - time).count());
    };
    QString text;
    if (!exchange.stale.isEmpty())
        text +=
            line(at(exchange.begin), "<-", exchange.stale, "thrown away: nobody waits for it"_s);
    text += line(at(exchange.begin), "->", request, meaningOf(readRequest(request)));
    for (const RefusedReply &refused : exchange.refused) {
        const QString meaning = readReply(refused.bytes, request).text;
        text += line(at(refused.at), "<-", refused.bytes,
                     refused.fault ? "refused: "_s + refused.fault.text()
                                   : meaning + "; asked again, to make sure"_s);
        if (!refused.fault)
            text += line(at(refused.at), "->", request, meaningOf(readRequest(request)));
    }
    const QString meaning =
        exchange.reply.isEmpty() ? QString() : readReply(exchange.reply, request).text;
    const QString fault = exchange.fault.text();
    text += line(end, "<-", exchange.reply,
                 meaning + QLatin1String(meaning.isEmpty() || fault.isEmpty() ? "" : "; ") + fault);
    m_file.write(text);
}

QString Trace::line(const QDateTime &time, const char *arrow, const QByteArray &bytes,
                    const QString &meaning) const
{
    const QString hex = bytes.isEmpty() ? "-"_s : hexText(bytes, int(bytes.size()));
    return QStringList{timeText(time, m_zone), QLatin1String(arrow), hex, meaning}.join("  "_s) +
           QLatin1Char('\n');
}

}  // namespace host
