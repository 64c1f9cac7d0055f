// Carries bytes between the door and the clock-less line.
#include "plc/line.h"

namespace plc {

Line::Line(Controller &controller, Faults &faults, Door &door, const LineSettings &settings)
    : m_pacing(controller, faults, settings), m_door(door)
{
    connect(&door, &Door::received, this, [this](const QByteArray &bytes) {
        m_pacing.receive(bytes, PreciseTimer::nowNs());
        sendDue();
    });
    connect(&m_timer, &PreciseTimer::fired, this, &Line::sendDue);
}

void Line::sendDue()
{
    const QByteArray bytes = m_pacing.transmit(PreciseTimer::nowNs());
    if (!bytes.isEmpty())
        m_door.send(bytes);
    if (m_pacing.nextNs() >= 0)
        m_timer.fireAt(m_pacing.nextNs());
}

}  // namespace plc
