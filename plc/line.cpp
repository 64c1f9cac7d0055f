// Carries bytes between the door and the clock-less line.
#include "plc/line.h"

namespace plc {

Line::Line(Controller &controller, Faults &faults, Door &door, const LineSettings &settings)
    : pacing_(controller, faults, settings), door_(door)
{
    connect(&door, &Door::received, this, [this](const QByteArray &bytes) {
        pacing_.receive(bytes, PreciseTimer::nowNs());
        sendDue();
    });
    connect(&timer_, &PreciseTimer::fired, this, &Line::sendDue);
}

void Line::sendDue()
{
    const QByteArray bytes = pacing_.transmit(PreciseTimer::nowNs());
    if (!bytes.isEmpty())
        door_.send(bytes);
    if (pacing_.nextNs() >= 0)
        timer_.fireAt(pacing_.nextNs());
}

}  // namespace plc
