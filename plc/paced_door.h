// The controller's line in real time: a door for the bytes and a timer for their pace.
#pragma once

#include "plc/door.h"
#include "plc/pacing.h"
#include "plc/precise_timer.h"

namespace plc {

class PacedDoor : public QObject
{
    Q_OBJECT

public:
    /** Serves `door`. All three stay the caller's and must outlive the line. */
    PacedDoor(Controller &controller, Faults &faults, Door &door, const LineSettings &settings);

private:
    void sendDue();

    Pacing m_pacing;
    Door &m_door;
    PreciseTimer m_timer;
};

}  // namespace plc
