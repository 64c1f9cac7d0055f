// A simulated controller in this process as the line, in simulated time: an hour on it takes as
// long as its computing, and comes out the same every time.
#pragma once

#include "host/line/line.h"

#include "plc/pacing.h"

#include <deque>
#include <random>
#include <utility>

namespace host {

/** How the bytes that leave the controller come to the host's device. */
enum class Delivery {
    Fifo,      ///< 16 at a time, and a reply's rest at its end
    EachByte,  ///< each at once
    Bundles,   ///< what has come, every 16 ms, as a USB adapter does
    Network    ///< 20 ms later; requests take as long
};

struct VirtualSettings
{
    plc::LineSettings line;  ///< pace and turnaround of the controller; the pieces follow delivery
    bool paceKnown = true;   ///< the host is told the pace, too
    Delivery delivery = Delivery::Fifo;
    plc::FaultPlan faults;
    int lostRequests = 0;  ///< of a million that are sent
    quint32 seed = 1;      ///< of the faults, of lost requests, of jitter and standstills
    bool moving = true;    ///< the controller's process moves by itself
    /** The host's process comes up to so much too late with everything that it does. */
    LineTime jitter{0};
    int standstills = 0;  ///< of a million requests: the host stands still before, in or behind one
    LineTime longestStandstill = std::chrono::milliseconds(50);
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
    int look() override;
    LineTime wireTime(int bytes) const override;

    plc::Memory &memory() { return m_memory; }
    plc::Controller &controller() { return m_controller; }
    plc::Faults &faults() { return m_faults; }
    /** Requests that were lost on their way to the controller. */
    int requestsLost() const { return m_requestsLost; }

    /** No more faults and standstills, and no more requests get lost. */
    void heal();

    /** From now on what is sent waits for the controller; resume() lets it answer all of that. */
    void suspend() { m_suspended = true; }
    void resume();

    /** As if the adapter was pulled out; open() fails until plugIn(). */
    void unplug();
    void plugIn() { m_pluggedIn = true; }

private:
    using Travelling = std::deque<std::pair<LineTime, QByteArray>>;  // with the arrival of each

    void comeLate();
    void standStill();
    void pass();
    LineTime nextEvent() const;
    void controllerReceives(const QByteArray &bytes, LineTime at);
    LineTime delivered(LineTime at) const;

    VirtualSettings m_settings;
    plc::Memory m_memory;
    plc::Controller m_controller;
    plc::Faults m_faults;
    plc::Pacing m_pacing;
    std::mt19937 m_random;
    LineTime m_now{0};
    Travelling m_requests;
    Travelling m_replies;
    QByteArray m_device;      // arrived, and not received yet
    QByteArray m_waiting;     // for the suspended controller
    int m_standstillIn = -1;  // so many of the host's calls on; -1: none is to come
    int m_requestsLost = 0;
    bool m_suspended = false;
    bool m_pluggedIn = true;
    bool m_isOpen = false;
};

}  // namespace host
