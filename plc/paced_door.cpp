// Carries bytes between the door and the clock-less line.
#include "plc/paced_door.h"

namespace plc {

PacedDoor::PacedDoor(Controller &controller, Faults &faults, Door &door,
                     const LineSettings &settings)
    : m_pacing(controller, faults, settings), m_door(door)
{
    connect(&door, &Door::received, this, [this](const QByteArray &bytes) {
        m_pacing.receive(bytes, PreciseTimer::nowNs());
        sendDue();
    });
    connect(&m_timer, &PreciseTimer::fired, this, &PacedDoor::sendDue);
}

void PacedDoor::sendDue()
{
    const QByteArray bytes = m_pacing.transmit(PreciseTimer::nowNs());
    if (!bytes.isEmpty())
        m_door.send(bytes);
    if (m_pacing.nextNs() >= 0)
        m_timer.fireAt(m_pacing.nextNs());
}

}  // namespace plc
