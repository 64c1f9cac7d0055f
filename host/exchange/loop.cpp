// The communication loop and its guards.
#include "host/exchange/loop.h"

#include <algorithm>

namespace host {

using std::chrono::milliseconds;

namespace {

enum DriverResult { ReplyGood = 1, RequestGivenUp = 2, SendAgain = 8 };

constexpr char Ack = 0x06;  // opens a reply
constexpr char Eot = 0x04;  // closes it; all between is printable

// A line that never falls silent must not stop the loop; the checksum then has to do.
constexpr int QuietTimesAtMost = 10;

// What the clocks of host and controller may differ by.
constexpr int EarlyPercent = 95;

constexpr milliseconds IdlePause(5);

// The size of the whole reply that the bytes begin with, damaged or not; 0 when there is none yet.
int firstReplySize(const QByteArray &bytes)
{
    return bytes.startsWith(Ack) ? int(bytes.indexOf(Eot)) + 1 : 0;
}

// True for nothing but well-formed replies, one behind the other.
bool onlyWholeReplies(QByteArray bytes)
{
    while (!bytes.isEmpty()) {
        const int size = firstReplySize(bytes);
        if (formFault(bytes.left(size)))
            return false;
        bytes.remove(0, size);
    }
    return true;
}

}  // namespace

LoopCounters LoopCounters::operator-(const LoopCounters &earlier) const
{
    LoopCounters difference;
    difference.exchanges = exchanges - earlier.exchanges;
    difference.retries = retries - earlier.retries;
    difference.errors = errors - earlier.errors;
    difference.refused = refused - earlier.refused;
    difference.bytesSent = bytesSent - earlier.bytesSent;
    difference.bytesReceived = bytesReceived - earlier.bytesReceived;
    difference.wordsRead = wordsRead - earlier.wordsRead;
    return difference;
}

Loop::Loop(const Driver &driver, Line &line, const LoopSettings &settings)
    : m_driver(driver), m_line(line), m_settings(settings)
{
    if (m_settings.quietTime == milliseconds(0))
        m_settings.quietTime = m_settings.replyTimeout;
    m_latest = m_settings.replyTimeout + m_settings.quietTime;
}

Outcome Loop::exchange()
{
    if (!m_line.isOpen())
        return m_exchange.outcome = Outcome::LineLost;
    if (m_driver.getSendFrame(&m_exchange.frame) == 0)
        return Outcome::Idle;

    // The driver offers a request again until it is answered or given up; a line that was opened
    // again starts anew, and brings nothing from before.
    if (m_exchange.outcome == Outcome::LineLost)
        m_owed = m_restless = false;
    if (m_exchange.outcome != Outcome::Again)
        m_exchange.tries.clear();
    const QByteArray request = m_exchange.request();
    const bool sameRequest = request == m_lastRequest;
    m_exchange.stale = settleLine(sameRequest);
    m_exchange.refused.clear();
    m_exchange.reply.clear();
    m_exchange.errorText.clear();
    m_early = ReplyFault();
    if (send(request, sameRequest))
        collectReply();
    m_exchange.end = m_line.now();
    m_exchange.outcome = judge();
    remember();
    count();
    if (observer)
        observer(m_exchange);
    return m_exchange.outcome;
}

bool Loop::runUntil(const std::function<bool()> &done, milliseconds patience)
{
    const LineTime deadline = m_line.now() + patience;
    while (!done()) {
        if (m_line.now() >= deadline)
            return false;
        const Outcome outcome = exchange();
        if (outcome == Outcome::LineLost)
            return false;
        if (outcome == Outcome::Idle)
            m_line.pause(IdlePause);
    }
    return true;
}

bool Loop::runUntilIdle(milliseconds patience)
{
    const LineTime deadline = m_line.now() + patience;
    // The driver pauses once after a run of writes, so only two pauses in a row are the end.
    for (int idle = 0; idle < 2;) {
        const Outcome outcome = exchange();
        if (outcome == Outcome::LineLost || m_line.now() >= deadline)
            return false;
        idle = outcome == Outcome::Idle ? idle + 1 : 0;
    }
    return true;
}

// Throws away what nobody waits for. Waits for silence where the rest of something may be on its
// way, and before another request for what the last one may still be answered by.
QByteArray Loop::settleLine(bool sameRequest)
{
    const LineTime start = m_line.now();
    LineTime until = start + m_settings.listenFirst;
    if (m_restless)
        until = std::max<LineTime>(until, start + m_settings.quietTime);
    if (m_owed && !sameRequest)
        until = std::max(until, m_owedUntil);
    const LineTime deadline = until + QuietTimesAtMost * m_settings.quietTime;

    QByteArray stale;
    for (;;) {
        const QByteArray bytes = m_line.receive(until);
        stale += bytes;
        if (bytes.isEmpty() || m_line.now() >= deadline)
            return stale;
        if (!onlyWholeReplies(stale))
            until = std::max<LineTime>(until, m_line.now() + m_settings.quietTime);
        else if (m_owed)
            noteLateness();
    }
}

bool Loop::send(const QByteArray &request, bool sameRequest)
{
    // Taken before the first byte: a busy machine can only make a reply look later than it is.
    m_exchange.begin = m_line.now();
    if (m_exchange.tries.isEmpty())
        m_firstTry = m_exchange.begin;
    m_owed = m_owed && sameRequest;
    m_lastRequest = request;
    const bool sent = m_line.send(request);
    const LineTime arriving =
        m_line.now() + m_line.wireTime(m_exchange.frame.sendLen + m_exchange.frame.replyLen);
    m_replyUntil = arriving + m_settings.replyTimeout;
    m_owedUntil = arriving + m_latest;
    return sent;
}

// Collects until the answer is there or the time is up; replies of others are set aside.
void Loop::collectReply()
{
    const int replyLen = m_exchange.frame.replyLen;
    const LineTime deadline = m_replyUntil + QuietTimesAtMost * m_settings.quietTime;
    QByteArray &reply = m_exchange.reply;
    do {
        const QByteArray bytes = m_line.receive(m_replyUntil);
        if (bytes.isEmpty())
            return;
        reply += bytes;
        if (!m_early)
            m_early = earlyFault();
        refuseStrangers();
        // What is early is somebody else's, and nobody knows of what length: read it to its end.
    } while ((reply.size() < replyLen || (m_early && reply.startsWith(Ack))) &&
             m_line.now() < deadline);
    reply += m_line.receive(m_line.now());
}

// A reply that is early, or not as long as the answer, belongs to another request.
void Loop::refuseStrangers()
{
    QByteArray &reply = m_exchange.reply;
    for (int size = firstReplySize(reply); size > 0; size = firstReplySize(reply)) {
        ReplyFault fault = m_early;
        if (!fault && size != m_exchange.frame.replyLen) {
            fault.reason =
                size < m_exchange.frame.replyLen ? ReplyFault::TooShort : ReplyFault::TooLong;
            fault.got = size;
            fault.expected = m_exchange.frame.replyLen;
        }
        if (!fault)
            return;
        m_exchange.refused.append({m_line.now(), reply.left(size), fault});
        reply.remove(0, size);
        m_early = earlyFault();
    }
}

// What has arrived of the reply is there too early when request and it cannot have travelled since.
// A try that failed may be answered while the next one is on its way.
ReplyFault Loop::earlyFault() const
{
    ReplyFault fault;
    fault.waited = m_line.now() - m_firstTry;
    fault.expectedTime = m_line.wireTime(m_exchange.frame.sendLen + int(m_exchange.reply.size())) *
                         EarlyPercent / 100;
    if (!m_exchange.reply.isEmpty() && fault.waited < fault.expectedTime)
        fault.reason = ReplyFault::TooEarly;
    return fault;
}

ReplyFault Loop::examine() const
{
    const QByteArray &reply = m_exchange.reply;
    const int size = int(reply.size());
    const int replyLen = m_exchange.frame.replyLen;
    ReplyFault fault;
    if (!m_line.isOpen()) {
        fault.reason = ReplyFault::LineLost;
        fault.detail = m_line.errorText();
    } else if (size == 0 && !m_exchange.refused.isEmpty()) {
        fault = m_exchange.refused.constLast().fault;
    } else if (size == 0) {
        fault.reason = ReplyFault::NoReply;
        fault.waited = m_settings.replyTimeout;
    } else if (!reply.startsWith(Ack)) {
        fault = formFault(reply);
        if (m_lastRequest.startsWith(reply.left(m_lastRequest.size())))
            fault.reason = ReplyFault::Echo;
    } else if (m_early) {
        fault = m_early;
    } else if (size != replyLen) {
        fault.reason = size < replyLen ? ReplyFault::TooShort : ReplyFault::TooLong;
        fault.got = size;
        fault.expected = replyLen;
    } else {
        fault = formFault(reply);
    }
    return fault;
}

Outcome Loop::judge()
{
    m_exchange.fault = examine();
    if (m_exchange.fault.reason == ReplyFault::LineLost)
        return Outcome::LineLost;
    const int result = m_driver.dealRcvFrame(m_exchange.fault ? QByteArray() : m_exchange.reply,
                                             &m_exchange.errorText);
    if (result == ReplyGood)
        return Outcome::Good;
    if (result != SendAgain && result != RequestGivenUp)
        return Outcome::Idle;  // a callback has started the driver over
    if (!m_exchange.fault)
        m_exchange.fault.reason = ReplyFault::NotAsked;
    return result == SendAgain ? Outcome::Again : Outcome::GivenUp;
}

// What the exchange leaves for the next one to guard against.
void Loop::remember()
{
    const bool failed = bool(m_exchange.fault);
    // Bytes that came may be this request's reply, damaged: no other is to be expected then.
    const bool answered = !m_exchange.reply.isEmpty();
    m_restless = failed && answered;
    if (failed && !answered)
        m_owed = true;
    else if (m_owed && !m_exchange.tries.isEmpty())
        noteLateness();
    if (failed)
        m_exchange.tries.append(m_exchange.fault);
}

// A reply has come behind a failed try. It may be as old as the first one; then the answer to the
// last one may be as late.
void Loop::noteLateness()
{
    const LineTime age =
        std::min<LineTime>(m_line.now() - m_firstTry, QuietTimesAtMost * m_settings.quietTime);
    if (age <= m_latest)
        return;
    m_owedUntil += age - m_latest;
    m_latest = age;
}

void Loop::count()
{
    m_counters.bytesSent += m_exchange.frame.sendLen;
    m_counters.bytesReceived += m_exchange.reply.size();
    m_counters.refused += int(m_exchange.refused.size());
    if (m_exchange.outcome == Outcome::Good) {
        ++m_counters.exchanges;
        m_counters.wordsRead += m_exchange.frame.readCount;
    } else if (m_exchange.outcome == Outcome::Again) {
        ++m_counters.retries;
    } else if (m_exchange.outcome == Outcome::GivenUp) {
        ++m_counters.errors;
    }
}

}  // namespace host
