// When requests are complete and when the bytes of replies leave.
#include "plc/pacing.h"

#include <algorithm>

namespace plc {

namespace {

constexpr qint64 NsPerMs = 1000000;
constexpr qint64 NsPerSecond = 1000 * NsPerMs;

// Bytes reach a host in pieces like those that a UART's buffer hands over.
constexpr int PieceBytes = 16;

// A request whose bytes stop coming for so long is given up.
constexpr qint64 SilenceNs = NsPerSecond;

// Bounds for a sender that ignores the line's rate or never listens: how far arrival may lag
// behind the carrier, and how many replies may wait.
constexpr qint64 LongestLagNs = NsPerSecond;
constexpr int MaxOutgoing = 64;

}  // namespace

Pacing::Pacing(Controller &controller, Faults &faults, const LineSettings &settings)
    : controller_(controller),
      faults_(faults),
      byteNs_(settings.baud > 0 ? 10 * NsPerSecond / settings.baud : 0),
      turnaroundNs_(settings.turnaroundMs * NsPerMs)
{
}

void Pacing::receive(const QByteArray &bytes, qint64 nowNs)
{
    inputEndNs_ = qBound(nowNs, inputEndNs_, nowNs + LongestLagNs);
    for (int i = 0; i < int(bytes.size()); ++i) {
        inputEndNs_ += byteNs_;
        const QByteArray reply = controller_.receive(bytes.at(i));
        if (reply.isEmpty())
            continue;
        const qint64 startNs = inputEndNs_ + turnaroundNs_;
        const QVector<Transmission> pieces = faults_.transmit(reply, startNs / NsPerMs);
        for (const Transmission &piece : pieces)
            enqueue({startNs + piece.afterMs * NsPerMs, piece.bytes, 0});
    }
    silenceNs_ = inputEndNs_ + SilenceNs;
    nextNs_ = nowNs;
}

void Pacing::enqueue(const Outgoing &outgoing)
{
    if (outgoing_.size() >= MaxOutgoing)
        return;
    // What is on its way has started before now, so nothing is put before it.
    const auto place = std::upper_bound(
        outgoing_.begin(), outgoing_.end(), outgoing,
        [](const Outgoing &a, const Outgoing &b) { return a.startNs < b.startNs; });
    outgoing_.insert(place, outgoing);
}

QByteArray Pacing::transmit(qint64 nowNs)
{
    if (silenceNs_ >= 0 && nowNs >= silenceNs_) {
        controller_.silence();
        silenceNs_ = -1;
    }
    nextNs_ = silenceNs_;
    QByteArray leaving;
    while (!outgoing_.isEmpty()) {
        Outgoing &head = outgoing_.first();
        const int size = int(head.bytes.size());
        head.startNs = qMax(head.startNs, outputEndNs_);
        const qint64 elapsedNs = nowNs - head.startNs;
        int left = 0;
        if (elapsedNs >= 0)
            left = byteNs_ == 0 ? size : int(qMin(qint64(size), elapsedNs / byteNs_));
        if (left > head.sent) {
            leaving += head.bytes.mid(head.sent, left - head.sent);
            head.sent = left;
        }
        if (left < size) {
            const qint64 nextPieceNs = head.startNs + byteNs_ * qMin(size, left + PieceBytes);
            nextNs_ = nextNs_ < 0 ? nextPieceNs : qMin(nextNs_, nextPieceNs);
            break;
        }
        outputEndNs_ = head.startNs + byteNs_ * size;
        outgoing_.pop_front();
    }
    return leaving;
}

}  // namespace plc
