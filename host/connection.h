// A connection to a controller, as the command line describes it: the driver, its session, the line
// and the loop, with a lost line opened again.
#ifndef TOLVANE_HOST_CONNECTION_H
#define TOLVANE_HOST_CONNECTION_H

#include "host/controller_process.h"
#include "host/identity.h"
#include "host/loop.h"
#include "host/serial_line.h"
#include "host/session.h"
#include "host/trace.h"

#include <QtCore/QCommandLineParser>

#include <functional>
#include <memory>

namespace host {

/** Adds --port, --tcp, --simulate and the other options that a Connection reads. */
void addConnectionOptions(QCommandLineParser &parser);

/** Reads a whole number from an option. Throws Failure (bad input) outside the range. */
int numberOption(const QCommandLineParser &parser, const QString &name, int lowest, int highest);

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
    int stationNo() const { return m_stationNo; }
    Session &session() { return *m_session; }

    // After open():
    Line &line() { return *m_line; }
    const LoopCounters &counters() const { return m_loop->counters(); }
    bool simulated() const { return m_controller != nullptr; }
    ControllerProcess *controller() { return m_controller.get(); }  ///< null unless simulated()

    /** Called after every exchange that was sent. */
    std::function<void(const Exchange &)> observer;

    /**
     * One step of the loop, with a short pause when there is nothing to send. A line that is lost
     * is opened again as soon as it is there; that it is gone and that it is back is said once.
     */
    Outcome step();

    /**
     * Goes on until the driver has nothing left to send. Returns the driver's error texts of the
     * requests that it gave up. Throws Failure when a lost line stays away.
     */
    QStringList finish();

private:
    void makeLine();
    bool openAgain();

    Driver m_driver;
    Identity m_identity;
    int m_stationNo = 0;
    QString m_device;  // one of these two, or neither: simulated
    QString m_server;
    bool m_simulationAsked = false;
    SerialSettings m_serial;
    int m_simulatedBaud = 0;  // 0: answers at once, or is no simulation
    LoopSettings m_loopSettings;

    std::unique_ptr<Trace> m_trace;  // null without --trace
    std::unique_ptr<Session> m_session;
    std::unique_ptr<ControllerProcess> m_controller;
    std::unique_ptr<Line> m_line;
    std::unique_ptr<Loop> m_loop;
    QString m_place;  // what the line leads to, for messages
    QStringList m_givenUp;
    bool m_lost = false;
};

}  // namespace host

#endif
