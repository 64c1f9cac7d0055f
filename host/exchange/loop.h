// The communication loop: carries the driver's requests over the line and the replies back.
#pragma once

#include "host/driver/driver_library.h"
#include "host/exchange/step_guard.h"

#include <functional>

namespace host {

/** What an exchange came to. */
enum class Outcome {
    Idle,        ///< the driver had nothing to send
    Good,        ///< the reply was accepted
    Again,       ///< no reply or a bad one; the driver offers the same request again
    GivenUp,     ///< no good reply within the retry limit
    LineLost,    ///< the line is closed; the request is offered again when the line is back
    Interrupted  ///< cut short, because the program is to end
};

/**
 * A whole reply that cannot be the answer to the request; the exchange went on without it. Without
 * a fault it may be, but the request was sent once more to make sure.
 */
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
    QString errorText;           ///< the driver's description of the request
    ReplyFault fault;            ///< why it failed; none when the outcome is good
    QVector<ReplyFault> tries;   ///< faults of the request's tries so far, this one's last
    StepGuard::Verdict earlier;  ///< what it says of the replies that were accepted before it

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
    int baud = 0;  ///< of the line's settings, for messages; 0: not known
};

struct LoopCounters
{
    int exchanges = 0;   ///< with a good reply
    int retries = 0;     ///< requests that were to be sent again
    int errors = 0;      ///< requests given up
    int refused = 0;     ///< whole replies that could not be the answer
    int doubted = 0;     ///< exchanges that listened on for another reply
    int askedTwice = 0;  ///< read steps that were sent once more, to make sure
    qint64 bytesSent = 0;
    qint64 bytesReceived = 0;  ///< stale bytes and refused replies not included
    qint64 wordsRead = 0;      ///< in good replies

    LoopCounters operator-(const LoopCounters &earlier) const;
};

/**
 * Replies carry no number that ties them to their request, and the driver takes any well-formed
 * reply. So the loop guards, by time, by what is owed, by length and by asking twice:
 * docs/host-guide.md tells the rules. On a healthy line they cost next to nothing.
 */
class Loop
{
public:
    /** Driver and line stay the caller's; the driver is initialised before the first exchange. */
    Loop(const Driver &driver, Line &line, const LoopSettings &settings);

    /** Called after every exchange that was sent, lost ones included. */
    std::function<void(const Exchange &)> observer;

    /** Called with the news that the line is lost, and that it is back; once each. */
    std::function<void(const QString &text)> say = [](const QString &) {};
    QString place;  ///< what the news call the line

    /** Carries one request, if there is one, and waits for its reply. */
    Outcome exchange();

    /**
     * As exchange(), with a short pause when there is nothing to send, and a lost line is opened
     * again: at first after a second, then after twice as long each time, up to 30 s; until then a
     * moment passes at every call.
     */
    Outcome step();

    /**
     * Goes on until done() is true, asked after every exchange. Returns false when the line's time
     * is up or the line is lost first.
     */
    bool runUntil(const std::function<bool()> &done, std::chrono::milliseconds patience);

    /** Goes on until the driver has nothing to send. Returns false as runUntil() does. */
    bool runUntilIdle(std::chrono::milliseconds patience);

    const LoopCounters &counters() const { return m_counters; }

    /** Words, 1 or 2, whose read would prove the replies accepted so far. */
    int provingWords() const { return m_guard.provingWords(); }
    /** The same when they have waited long enough for their proof, else 0. */
    int wantedWords() const { return m_guard.lengthWanted(m_line.now()) ? provingWords() : 0; }

private:
    bool reopen();
    void settleLine(bool sameRequest);
    void carry(const QByteArray &request, bool sameRequest);
    bool send(const QByteArray &request, bool sameRequest);
    void collectReply();
    void sortReplies();
    LineTime patience(LineTime lastCame) const;
    ReplyFault lengthFault(int size) const;
    ReplyFault examine() const;
    Outcome judge();
    void remember();
    void noteLateness();
    void noteTooFast();
    void count();

    const Driver &m_driver;
    Line &m_line;
    LoopSettings m_settings;
    StepGuard m_guard;
    LoopCounters m_counters;
    Exchange m_exchange;
    QByteArray m_arriving;     // behind the answer, if that is there
    bool m_proven = false;     // the answer, by when it came
    int m_answers = 0;         // that one and its copies
    bool m_differing = false;  // replies came that are no copies of the answer

    QByteArray m_lastRequest;
    bool m_owed = false;       // the last request, however often it was sent, may still be answered
    LineTime m_firstTry{0};    // when the request was handed over for the first of its tries
    LineTime m_replyUntil{0};  // how long to wait for its reply
    LineTime m_owedUntil{0};   // and how long one may still come
    LineTime m_latest{0};      // how late replies may be, as far as is known
    bool m_restless = false;   // bytes that make no sense came; the rest of them may be on its way

    bool m_saidLost = false;
    LineTime m_reopenWait{0};
    std::optional<LineTime> m_reopenAt;
    std::optional<LineTime> m_tooFastSince;  // nothing was good since, and replies came too early
    bool m_saidTooFast = false;
};

}  // namespace host
