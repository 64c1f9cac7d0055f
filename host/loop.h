// The communication loop: carries the driver's requests over the line and the replies back.
#ifndef TOLVANE_HOST_LOOP_H
#define TOLVANE_HOST_LOOP_H

#include "host/driver_library.h"
#include "host/line.h"

#include <QtCore/QElapsedTimer>

#include <functional>

namespace host {

/** What an exchange came to. */
enum class Outcome {
    Idle,     ///< the driver had nothing to send
    Good,     ///< the reply was accepted
    Again,    ///< no reply or a bad one; the driver offers the same request again
    GivenUp,  ///< no good reply within the retry limit
    LineLost  ///< the line is closed; the request is offered again when the line is back
};

/** One exchange, for whoever watches the loop. */
struct Exchange
{
    FRAME_PRO frame;   ///< the request and the item that it serves
    QByteArray stale;  ///< bytes thrown away before sending
    QByteArray reply;  ///< what arrived, complete or not
    Outcome outcome = Outcome::Idle;
    QString errorText;                      ///< the driver's description of the request
    std::chrono::microseconds duration{0};  ///< from the first byte sent to the judged reply

    QByteArray request() const
    {
        return QByteArray(reinterpret_cast<const char *>(frame.frame), frame.sendLen);
    }
};

struct LoopSettings
{
    /** How long the controller may think; the travel of both frames comes on top. */
    std::chrono::milliseconds replyTimeout{500};
    /** Silence that proves the line to be at rest; 0: as long as replyTimeout. */
    std::chrono::milliseconds quietTime{0};
    /**
     * The line carries bytes at its own speed (a real port, a paced simulation): what arrives
     * while the request is still leaving cannot be its reply. Costs no time.
     */
    bool paced = false;
    /**
     * Listens this long before each request, so that a doubled reply on a line that is not paced
     * has arrived by then. Costs that time in every exchange.
     */
    std::chrono::milliseconds listenFirst{0};
};

struct LoopCounters
{
    int exchanges = 0;  ///< with a good reply
    int retries = 0;    ///< requests that were to be sent again
    int errors = 0;     ///< requests given up
    qint64 bytesSent = 0;
    qint64 bytesReceived = 0;  ///< stale bytes not included
    qint64 bytesStale = 0;
    qint64 wordsRead = 0;  ///< in good replies

    LoopCounters operator-(const LoopCounters &earlier) const;
};

/**
 * Replies carry no number that ties them to their request, and the driver takes a well-formed
 * reply of any length. So the loop guards: what arrived before a request is sent is thrown away;
 * after a failed exchange, or when bytes came that nobody asked for, it waits for the line to be
 * silent before the next request; a reply of the wrong length counts as none. On a paced line a
 * reply that begins before its request has left counts as none, too.
 */
class Loop
{
public:
    /** Driver and line stay the caller's; the driver is initialised before the first exchange. */
    Loop(const Driver &driver, Line &line, const LoopSettings &settings);

    /** Called after every exchange that was sent, lost ones included. */
    std::function<void(const Exchange &)> observer;

    /** Carries one request, if there is one, and waits for its reply. */
    Outcome exchange();

    /**
     * Goes on until done() is true, asked after every exchange. Returns false when the time is up
     * or the line is lost first.
     */
    bool runUntil(const std::function<bool()> &done, std::chrono::milliseconds patience);

    /** Goes on until the driver has nothing to send. Returns false as runUntil() does. */
    bool runUntilIdle(std::chrono::milliseconds patience);

    const LoopCounters &counters() const { return m_counters; }

private:
    QByteArray settleLine();
    bool replyIsEarly(const QElapsedTimer &sending);
    Outcome judge();
    void count(const Exchange &exchange);

    const Driver &m_driver;
    Line &m_line;
    LoopSettings m_settings;
    LoopCounters m_counters;
    Exchange m_exchange;
    bool m_restless = false;  // bytes of an earlier reply may still be on their way
};

}  // namespace host

#endif
