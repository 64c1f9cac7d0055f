// The communication loop: carries the driver's requests over the line and the replies back.
#pragma once

#include "host/driver/driver_library.h"
#include "host/frames/reply_fault.h"

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

/** A whole reply that cannot be the answer to the request; the exchange went on without it. */
struct RefusedReply
{
    LineTime at{0};
    QByteArray bytes;
    ReplyFault fault;
};

/** One exchange, for whoever watches the loop. Times are the line's. */
struct Exchange
{
    FRAME_PRO frame;                ///< the request and the item that it serves
    QByteArray stale;               ///< bytes thrown away before sending
    LineTime begin{0};              ///< before the first byte was handed to the line
    QVector<RefusedReply> refused;  ///< in the order of their arrival
    QByteArray reply;               ///< what arrived in the end, complete or not
    LineTime end{0};                ///< when the reply was judged
    Outcome outcome = Outcome::Idle;
    QString errorText;          ///< the driver's description of the request
    ReplyFault fault;           ///< why it failed; none when the outcome is good
    QVector<ReplyFault> tries;  ///< faults of the request's tries so far, this one's last

    QByteArray request() const
    {
        return QByteArray(reinterpret_cast<const char *>(frame.frame), frame.sendLen);
    }
    LineTime duration() const { return end - begin; }
};

struct LoopSettings
{
    /** How long the controller may think; the travel of both frames comes on top. */
    std::chrono::milliseconds replyTimeout{500};
    /**
     * How much later than the time-out a reply may still come, and the silence that proves the
     * line to be at rest after bytes that make no sense; 0: as long as replyTimeout.
     */
    std::chrono::milliseconds quietTime{0};
    /**
     * Listens this long before each request, so that a doubled reply on a line that nothing paces
     * has arrived by then. Costs that time in every exchange.
     */
    std::chrono::milliseconds listenFirst{0};
};

struct LoopCounters
{
    int exchanges = 0;  ///< with a good reply
    int retries = 0;    ///< requests that were to be sent again
    int errors = 0;     ///< requests given up
    int refused = 0;    ///< whole replies that could not be the answer
    qint64 bytesSent = 0;
    qint64 bytesReceived = 0;  ///< stale bytes and refused replies not included
    qint64 wordsRead = 0;      ///< in good replies

    LoopCounters operator-(const LoopCounters &earlier) const;
};

/**
 * Replies carry no number that ties them to their request, and the driver takes any well-formed
 * reply. So the loop guards, by time, by what is owed and by length: docs/host-guide.md tells the
 * rules. On a healthy line they cost nothing.
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
     * Goes on until done() is true, asked after every exchange. Returns false when the line's time
     * is up or the line is lost first.
     */
    bool runUntil(const std::function<bool()> &done, std::chrono::milliseconds patience);

    /** Goes on until the driver has nothing to send. Returns false as runUntil() does. */
    bool runUntilIdle(std::chrono::milliseconds patience);

    const LoopCounters &counters() const { return m_counters; }

private:
    QByteArray settleLine(bool sameRequest);
    bool send(const QByteArray &request, bool sameRequest);
    void collectReply();
    void refuseStrangers();
    ReplyFault earlyFault() const;
    ReplyFault examine() const;
    Outcome judge();
    void remember();
    void noteLateness();
    void count();

    const Driver &m_driver;
    Line &m_line;
    LoopSettings m_settings;
    LoopCounters m_counters;
    Exchange m_exchange;
    ReplyFault m_early;  // of the reply that is being collected

    QByteArray m_lastRequest;
    bool m_owed = false;       // the last request, however often it was sent, may still be answered
    LineTime m_firstTry{0};    // when the request was handed over for the first of its tries
    LineTime m_replyUntil{0};  // how long to wait for its reply
    LineTime m_owedUntil{0};   // and how long one may still come
    LineTime m_latest{0};      // how late replies may be, as far as is known
    bool m_restless = false;   // bytes that make no sense came; the rest of them may be on its way
};

}  // namespace host
