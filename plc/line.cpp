// Timing of requests and replies.
#include "plc/line.h"

#include <algorithm>

namespace plc {

namespace {

constexpr qint64 NsPerMs = 1000000;
constexpr qint64 NsPerSecond = 1000 * NsPerMs;

// Bytes reach a host in pieces like those that a UART's buffer hands over.
constexpr int PieceBytes = 16;

// A request whose bytes stop coming for so long is given up.
constexpr int SilenceMs = 1000;

// Bounds for a sender that ignores the line's rate or never listens: how far arrival may lag
// behind the carrier, and how many replies may wait.
constexpr qint64 LongestLagNs = NsPerSecond;
constexpr int MaxOutgoing = 64;

}  // namespace

Line::Line(Controller &controller, Faults &faults, Door &door, const LineSettings &settings)
    : controller_(controller),
      faults_(faults),
      door_(door),
      byteNs_(settings.baud > 0 ? 10 * NsPerSecond / settings.baud : 0),
      turnaroundNs_(settings.turnaroundMs * NsPerMs)
{
    connect(&door, &Door::received, this, &Line::takeIn);
    connect(&sending_, &PreciseTimer::fired, this, &Line::sendDue);
    silence_.setSingleShot(true);
    connect(&silence_, &QTimer::timeout, this, [this] { controller_.silence(); });
}

void Line::takeIn(const QByteArray &bytes)
{
    const qint64 now = PreciseTimer::nowNs();
    inputEndNs_ = qBound(now, inputEndNs_, now + LongestLagNs);
    for (char byte : bytes) {
        inputEndNs_ += byteNs_;
        const QByteArray reply = controller_.receive(byte);
        if (reply.isEmpty())
            continue;
        const qint64 startNs = inputEndNs_ + turnaroundNs_;
        for (const Transmission &piece : faults_.transmit(reply, startNs / NsPerMs))
            enqueue({startNs + piece.afterMs * NsPerMs, piece.bytes, 0});
    }
    silence_.start(SilenceMs);
    sendDue();
}

void Line::enqueue(const Outgoing &outgoing)
{
    if (outgoing_.size() >= MaxOutgoing)
        return;
    // What is on its way is not interrupted.
    const bool headStarted = !outgoing_.isEmpty() && outgoing_.first().sent > 0;
    const auto place = std::upper_bound(
        outgoing_.begin() + (headStarted ? 1 : 0), outgoing_.end(), outgoing,
        [](const Outgoing &a, const Outgoing &b) { return a.startNs < b.startNs; });
    outgoing_.insert(place, outgoing);
}

/** Sends all bytes that have left by now, and sets the timer for the next. */
void Line::sendDue()
{
    const qint64 now = PreciseTimer::nowNs();
    while (!outgoing_.isEmpty()) {
        Outgoing &head = outgoing_.first();
        const int size = int(head.bytes.size());
        head.startNs = qMax(head.startNs, outputEndNs_);
        const qint64 elapsedNs = now - head.startNs;
        int left = 0;
        if (elapsedNs >= 0)
            left = byteNs_ == 0 ? size : int(qMin(qint64(size), elapsedNs / byteNs_));
        if (left > head.sent) {
            door_.send(head.bytes.mid(head.sent, left - head.sent));
            head.sent = left;
        }
        if (left < size) {
            sending_.fireAt(head.startNs + byteNs_ * qMin(size, left + PieceBytes));
            return;
        }
        outputEndNs_ = head.startNs + byteNs_ * size;
        outgoing_.removeFirst();
    }
}

}  // namespace plc
