// A simulated controller in this process as the line, in simulated time: an hour on it takes as
// long as its computing, and comes out the same every time.
#pragma once

#include "host/line/line.h"

#include "plc/pacing.h"

#include <random>

namespace host {

struct VirtualSettings
{
    plc::LineSettings line;  ///< pace and turnaround of the controller
    bool paceKnown = true;   ///< the host is told the pace, too
    plc::FaultPlan faults;
    int lostRequests = 0;  ///< of a million that are sent
    quint32 seed = 1;      ///< of the faults, of lost requests and of the jitter
    bool moving = true;    ///< the controller's process moves by itself
    /** The host's process comes up to so much too late with everything that it does. */
    LineTime jitter{0};
};

class VirtualLine : public Line
{
public:
    explicit VirtualLine(const VirtualSettings &settings);

    bool open() override;
    bool isOpen() const override { return m_isOpen; }
    QString errorText() const override;
    LineTime now() const override { return m_now; }
    void pause(LineTime duration) override;
    bool send(const QByteArray &bytes) override;
    QByteArray receive(LineTime until) override;
    LineTime wireTime(int bytes) const override;

    plc::Memory &memory() { return m_memory; }
    plc::Controller &controller() { return m_controller; }
    plc::Faults &faults() { return m_faults; }
    /** Requests that were lost on their way to the controller. */
    int requestsLost() const { return m_requestsLost; }

    /** No more faults, and no more requests get lost. */
    void heal();

    /** From now on what is sent waits for the controller; resume() lets it answer all of that. */
    void suspend() { m_suspended = true; }
    void resume();

    /** As if the adapter was pulled out; open() fails until plugIn(). */
    void unplug();
    void plugIn() { m_pluggedIn = true; }

private:
    void comeLate();
    void controllerReceives(const QByteArray &bytes);

    VirtualSettings m_settings;
    plc::Memory m_memory;
    plc::Controller m_controller;
    plc::Faults m_faults;
    plc::Pacing m_pacing;
    std::mt19937 m_random;
    LineTime m_now{0};
    QByteArray m_waiting;  // for the suspended controller
    int m_requestsLost = 0;
    bool m_suspended = false;
    bool m_pluggedIn = true;
    bool m_isOpen = false;
};

}  // namespace host
