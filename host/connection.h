// A connection to a controller, as the command line describes it: the driver, its session, the line
// and the loop, with a lost line opened again.
#ifndef TOLVANE_HOST_CONNECTION_H
#define TOLVANE_HOST_CONNECTION_H

#include "host/connection_options.h"
#include "host/controller_process.h"
#include "host/trace.h"

#include <functional>
#include <memory>

namespace host {

class Connection
{
public:
    /**
     * Loads the driver and reads the options; addresses can be checked, but nothing is opened yet.
     * Throws Failure (bad input) that names the option and what was expected.
     */
    explicit Connection(const QCommandLineParser &parser);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /** Opens the line, or starts a simulated controller; says which on stderr. Throws Failure. */
    void open();

    const Driver &driver() const { return m_driver; }
    const Identity &identity() const { return m_identity; }
    int stationNo() const { return m_options.stationNo; }
    Session &session() { return *m_session; }

    // After open():
    Line &line() { return *m_line; }
    const LoopCounters &counters() const { return m_loop->counters(); }
    bool simulated() const { return m_controller != nullptr; }

    /** Called after every exchange that was sent. */
    std::function<void(const Exchange &)> observer;

    /**
     * One step of the loop, with a short pause when there is nothing to send. A line that is lost
     * is opened again, at first after a second, later every 30 s; that it is gone and that it is
     * back is said once.
     */
    Outcome step();

    /**
     * Goes on until the driver has nothing left to send. Returns why the requests failed that it
     * gave up. Throws Failure when a lost line stays away.
     */
    QStringList finish();

private:
    std::unique_ptr<Line> makeLine();
    void reopen();

    Driver m_driver;
    Identity m_identity;
    ConnectionOptions m_options;
    std::unique_ptr<Trace> m_trace;  // null without --trace
    std::unique_ptr<Session> m_session;
    std::unique_ptr<ControllerProcess> m_controller;  // null unless simulated
    std::unique_ptr<Line> m_line;
    std::unique_ptr<Loop> m_loop;
    QString m_place;  // what the line leads to, for messages
    QStringList m_givenUp;

    std::chrono::milliseconds m_untilReopening{0};  // how long to wait; 0: the line is not lost
    LineTime m_reopenAt{0};
};

}  // namespace host

#endif
