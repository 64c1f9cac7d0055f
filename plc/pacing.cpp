// When requests are complete and when the bytes of replies leave.
#include "plc/pacing.h"

#include <algorithm>

namespace plc {

namespace {

constexpr qint64 NsPerMs = 1000000;
constexpr qint64 NsPerSecond = 1000 * NsPerMs;

// A request whose bytes stop coming for so long is given up.
constexpr qint64 SilenceNs = NsPerSecond;

// Bounds for a sender that ignores the line's rate or never listens: how far arrival may lag
// behind the carrier, and how many replies may wait.
constexpr qint64 LongestLagNs = NsPerSecond;
constexpr int MaxOutgoing = 64;

}  // namespace

Pacing::Pacing(Controller &controller, Faults &faults, const LineSettings &settings)
    : m_controller(controller),
      m_faults(faults),
      m_byteNs(settings.baud > 0 ? 10 * NsPerSecond / settings.baud : 0),
      m_turnaroundNs(settings.turnaroundMs * NsPerMs),
      m_pieceBytes(settings.pieceBytes)
{
}

void Pacing::receive(const QByteArray &bytes, qint64 nowNs)
{
    m_inputEndNs = qBound(nowNs, m_inputEndNs, nowNs + LongestLagNs);
    for (int i = 0; i < int(bytes.size()); ++i) {
        m_inputEndNs += m_byteNs;
        const QByteArray reply = m_controller.receive(bytes.at(i));
        if (reply.isEmpty())
            continue;
        const qint64 startNs = m_inputEndNs + m_turnaroundNs;
        const QVector<Transmission> pieces = m_faults.transmit(reply, startNs / NsPerMs);
        for (const Transmission &piece : pieces)
            enqueue({startNs + piece.afterMs * NsPerMs, piece.bytes, 0});
    }
    m_silenceNs = m_inputEndNs + SilenceNs;
    m_nextNs = nowNs;
}

void Pacing::enqueue(const Outgoing &outgoing)
{
    if (m_outgoing.size() >= MaxOutgoing)
        return;
    // What is on its way has started before now, so nothing is put before it.
    const auto place = std::upper_bound(
        m_outgoing.begin(), m_outgoing.end(), outgoing,
        [](const Outgoing &a, const Outgoing &b) { return a.startNs < b.startNs; });
    m_outgoing.insert(place, outgoing);
}

QByteArray Pacing::transmit(qint64 nowNs)
{
    if (m_silenceNs >= 0 && nowNs >= m_silenceNs) {
        m_controller.silence();
        m_silenceNs = -1;
    }
    m_nextNs = m_silenceNs;
    QByteArray leaving;
    while (!m_outgoing.isEmpty()) {
        Outgoing &head = m_outgoing.first();
        const int size = int(head.bytes.size());
        head.startNs = qMax(head.startNs, m_outputEndNs);
        const qint64 elapsedNs = nowNs - head.startNs;
        int left = 0;
        if (elapsedNs >= 0)
            left = m_byteNs == 0 ? size : int(qMin(qint64(size), elapsedNs / m_byteNs));
        if (left > head.sent) {
            leaving += head.bytes.mid(head.sent, left - head.sent);
            head.sent = left;
        }
        if (left < size) {
            const qint64 nextPieceNs = head.startNs + m_byteNs * qMin(size, left + m_pieceBytes);
            m_nextNs = m_nextNs < 0 ? nextPieceNs : qMin(m_nextNs, nextPieceNs);
            break;
        }
        m_outputEndNs = head.startNs + m_byteNs * size;
        m_outgoing.pop_front();
    }
    return leaving;
}

}  // namespace plc
