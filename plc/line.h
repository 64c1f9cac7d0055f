// The controller's line in real time: a door for the bytes and a timer for their pace.
#ifndef PLC_LINE_H
#define PLC_LINE_H

#include "plc/door.h"
#include "plc/pacing.h"
#include "plc/precise_timer.h"

namespace plc {

class Line : public QObject
{
    Q_OBJECT

public:
    /** Serves `door`. All three stay the caller's and must outlive the line. */
    Line(Controller &controller, Faults &faults, Door &door, const LineSettings &settings);

private:
    void sendDue();

    Pacing m_pacing;
    Door &m_door;
    PreciseTimer m_timer;
};

}  // namespace plc

#endif
