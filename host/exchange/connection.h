// A connection to a controller, as the command line describes it: the driver, its session, the line
// and the loop, with a lost line opened again.
#pragma once

#include "host/exchange/connection_options.h"
#include "host/exchange/controller_process.h"
#include "host/exchange/trace.h"

#include <functional>
#include <memory>

namespace host {

enum class Purpose {
    Reading,  ///< a line not named is simulated, if standard error is a terminal that says so
    Writing   ///< it never is: the value would seem to have arrived
};

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

    /**
     * Opens the line, or starts a simulated controller and says so. Throws Failure; bad input where
     * no line is named and the purpose does not allow a simulated one that nobody asked for.
     */
    void open(Purpose purpose);

    /** As open(), unless it is; returns why a line that is named could not be; empty: it is open.
     */
    QString tryToOpen(Purpose purpose);

    const Driver &driver() const { return m_driver; }
    /** How long a request without replies takes until it is given up. */
    std::chrono::milliseconds patience() const
    {
        return m_options.session.retryLimit * m_options.loop.replyTimeout;
    }
    Zone zone() const { return m_options.zone; }
    Session &session() { return *m_session; }

    // After open():
    Line &line() { return *m_line; }
    const LoopCounters &counters() const { return m_loop->counters(); }
    /** The trace could not be written to its end. That was said, and the rest went on. */
    bool traceFailed() const { return m_traceFailed; }

    /** Where messages go, such as that the line is lost; at first to standard error. */
    std::function<void(const QString &text)> say;

    /** Called after every exchange that was sent. */
    std::function<void(const Exchange &)> observer;

    /** One step of the loop; that the line is gone and that it is back is said once. */
    Outcome step() { return m_loop->step(); }

    /** Blocks of one word are all alike long: nothing proves then whose a reply is. */
    bool canProve() const { return m_options.session.blockLimit > 1; }

    /** See Loop::wantedWords(). */
    int wantedWords() const { return canProve() ? m_loop->wantedWords() : 0; }

    /** What was found of the exchanges so far is not held against those that prove() is for. */
    void beginStep() { m_outOfStep = false; }

    /**
     * Reads a word or two at the point, which proves the exchanges since beginStep().
     * Returns false when one of their replies may have been another request's, or no proof comes.
     */
    bool prove(const Point &near);

    /**
     * Goes on until the driver has nothing left to send. Returns why the requests failed that it
     * gave up. Throws Failure when a lost line stays away.
     */
    QStringList finish();

private:
    std::unique_ptr<Line> makeLine();
    void trace(const Exchange &exchange);

    Driver m_driver;
    ConnectionOptions m_options;
    std::unique_ptr<Trace> m_trace;  // null without --trace
    bool m_traceFailed = false;
    std::unique_ptr<Session> m_session;
    std::unique_ptr<ControllerProcess> m_controller;  // null unless simulated
    std::unique_ptr<Line> m_line;
    std::unique_ptr<Loop> m_loop;
    QString m_place;  // what the line leads to, for messages
    QStringList m_givenUp;
    bool m_outOfStep = false;  // since the step began
    bool m_proven = false;
};

}  // namespace host
