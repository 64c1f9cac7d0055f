// The communication loop and its guards.
#include "host/exchange/loop.h"

#include "host/driver/session.h"
#include "host/output/interrupt.h"

#include <algorithm>
#include <utility>

namespace host {

using std::chrono::milliseconds;

namespace {

enum DriverResult { ReplyGood = 1, RequestGivenUp = 2, SendAgain = 8 };

// A line that never falls silent must not stop the loop; the checksum then has to do.
constexpr int QuietTimesAtMost = 10;
constexpr int MostKept = 4096;   // bytes that cannot be an answer
constexpr int MostRefused = 32;  // replies in one exchange
constexpr int MostAskedTwice = 4;

constexpr milliseconds IdlePause(5);
constexpr milliseconds Moment(100);
constexpr std::chrono::seconds FirstWait(1);
constexpr std::chrono::seconds LongestWait(30);
constexpr std::chrono::seconds TooFastFor(3);

}  // namespace

LoopCounters LoopCounters::operator-(const LoopCounters &earlier) const
{
    LoopCounters difference;
    difference.exchanges = exchanges - earlier.exchanges;
    difference.retries = retries - earlier.retries;
    difference.errors = errors - earlier.errors;
    difference.refused = refused - earlier.refused;
    difference.doubted = doubted - earlier.doubted;
    difference.askedTwice = askedTwice - earlier.askedTwice;
    difference.bytesSent = bytesSent - earlier.bytesSent;
    difference.bytesReceived = bytesReceived - earlier.bytesReceived;
    difference.wordsRead = wordsRead - earlier.wordsRead;
    return difference;
}

Loop::Loop(const Driver &driver, Line &line, const LoopSettings &settings)
    : m_driver(driver),
      m_line(line),
      m_settings(settings),
      m_guard([&line](int bytes) { return line.wireTime(bytes); }, settings.replyTimeout)
{
    if (m_settings.quietTime == milliseconds(0))
        m_settings.quietTime = m_settings.replyTimeout;
    m_latest = m_settings.replyTimeout + m_settings.quietTime;
}

Outcome Loop::step()
{
    if (!m_line.isOpen() && !reopen())
        return Outcome::LineLost;
    const Outcome outcome = exchange();
    if (outcome == Outcome::Idle)
        m_line.pause(IdlePause);
    if (outcome == Outcome::Good && std::exchange(m_saidLost, false))
        say("%1 is back"_s.arg(place));
    return outcome;
}

// A line counts as back when it has brought an answer: a server may take every call and drop it.
bool Loop::reopen()
{
    if (!m_saidLost) {
        say("lost %1 (%2); trying again"_s.arg(place, m_line.errorText()));
        m_saidLost = true;
        m_reopenWait = FirstWait;
    }
    const LineTime now = m_line.now();
    if (!m_reopenAt) {
        m_reopenAt = now + m_reopenWait;
        m_reopenWait = std::min<LineTime>(2 * m_reopenWait, LongestWait);
    }
    if (now < *m_reopenAt) {
        m_line.pause(std::min<LineTime>(Moment, *m_reopenAt - now));
        return false;
    }
    m_reopenAt.reset();
    if (!m_line.open())
        return false;
    // A device server has kept what came meanwhile, and delivers it now.
    m_owedUntil = std::max<LineTime>(m_owedUntil, m_line.now() + m_settings.quietTime);
    return true;
}

Outcome Loop::exchange()
{
    if (!m_line.isOpen())
        return m_exchange.outcome = Outcome::LineLost;
    if (m_driver.getSendFrame(&m_exchange.frame) == 0)
        return Outcome::Idle;

    // The driver offers a request again until it is answered or given up.
    if (m_exchange.outcome != Outcome::Again)
        m_exchange.tries.clear();
    m_exchange.stale.clear();
    m_exchange.refused.clear();
    m_exchange.errorText.clear();
    const QByteArray request = m_exchange.request();
    const bool sameRequest = request == m_lastRequest;
    settleLine(sameRequest);
    if (interrupted())
        return m_exchange.outcome = Outcome::Interrupted;
    carry(request, sameRequest);
    m_exchange.end = m_line.now();
    m_exchange.outcome = judge();
    if (m_exchange.outcome != Outcome::Interrupted) {
        remember();
        noteTooFast();
        count();
    }
    m_exchange.earlier = m_guard.verdict();
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
void Loop::settleLine(bool sameRequest)
{
    const LineTime start = m_line.now();
    LineTime until = start + m_settings.listenFirst;
    if (Session::isReadStep(m_exchange.frame))
        until = std::max(until, start + m_guard.rest());
    if (m_restless)
        until = std::max<LineTime>(until, start + m_settings.quietTime);
    if (m_owed && !sameRequest)
        until = std::max(until, m_owedUntil);
    const LineTime deadline = until + QuietTimesAtMost * m_settings.quietTime;

    QByteArray &stale = m_exchange.stale;
    int whole = 0;  // of it, in whole replies
    for (QByteArray bytes = m_line.receive(until); !bytes.isEmpty();
         bytes = m_line.receive(until)) {
        if (m_line.now() >= deadline || interrupted())
            return;
        stale += bytes.left(MostKept - int(stale.size()));
        for (int size = wholeReplySize(stale, whole); size > 0;
             whole += size, size = wholeReplySize(stale, whole)) {
            const QByteArray reply = stale.mid(whole, size);
            if (formFault(reply))
                break;
            m_guard.setAside(reply, m_owed);
        }
        if (whole < int(stale.size()) || whole == MostKept) {
            m_guard.missed();
            until = std::max<LineTime>(until, m_line.now() + m_settings.quietTime);
        } else if (m_owed) {
            noteLateness();
        }
    }
}

// What the driver merges into a write must not be another's: two replies in a row have to be alike.
void Loop::carry(const QByteArray &request, bool sameRequest)
{
    int more = Session::isReadStep(m_exchange.frame) ? MostAskedTwice : 0;
    for (QByteArray before; send(request, sameRequest); before = m_exchange.reply) {
        collectReply();
        m_exchange.fault = examine();
        if (m_exchange.fault || more == 0 || m_exchange.reply == before)
            return;
        m_exchange.refused.append({m_line.now(), m_exchange.reply, {}});
        m_exchange.tries.clear();
        sameRequest = true;
        if (more-- == 1)
            m_exchange.fault.reason = ReplyFault::Differ;
        if (m_exchange.fault)
            return;
    }
    m_exchange.fault = examine();
}

bool Loop::send(const QByteArray &request, bool sameRequest)
{
    m_exchange.reply.clear();
    m_arriving.clear();
    m_differing = false;
    // Taken before the first byte: a busy machine can only make a reply look later than it is.
    m_exchange.begin = m_line.now();
    if (m_exchange.tries.isEmpty())
        m_firstTry = m_exchange.begin;
    m_owed = m_owed && sameRequest;
    m_lastRequest = request;
    const int replyLen = m_exchange.frame.replyLen;
    m_guard.ask(int(request.size()), replyLen, m_exchange.begin, m_firstTry);
    const int there = m_line.look();
    m_guard.look(m_exchange.begin, there, m_line.now());
    const bool taken = m_line.send(request);
    m_counters.bytesSent += request.size();
    m_guard.sent(m_line.now());
    const LineTime arriving = m_line.now() + m_line.wireTime(int(request.size()) + replyLen);
    m_replyUntil = arriving + m_settings.replyTimeout;
    m_owedUntil = arriving + m_latest;
    return taken;
}

// Collects until the answer is there, and nothing else that might be it, or the time is up.
void Loop::collectReply()
{
    const LineTime deadline = m_replyUntil + QuietTimesAtMost * m_settings.quietTime;
    // The first look is due when the request has just left the line.
    LineTime until = m_exchange.begin + m_line.wireTime(m_exchange.frame.sendLen);
    LineTime lastCame = m_exchange.begin;
    for (;;) {
        const QByteArray bytes = m_line.receive(until);
        if (!bytes.isEmpty())
            lastCame = m_line.now();
        m_arriving += bytes;
        if (m_exchange.reply.isEmpty()) {
            const LineTime before = m_line.now();
            const int there = int(m_arriving.size()) + m_line.look();
            m_guard.look(before, there, m_line.now());
        }
        sortReplies();
        until = patience(lastCame);
        const LineTime now = m_line.now();
        if ((bytes.isEmpty() && now >= until) || now >= deadline || interrupted() ||
            !m_line.isOpen() || m_arriving.size() > MostKept ||
            m_exchange.refused.size() >= MostRefused)
            break;
    }
    // What came behind the answer, and is no copy of it, spoils it.
    if (m_exchange.reply.isEmpty() || !m_arriving.isEmpty())
        m_exchange.reply += m_arriving;
}

// Takes the whole replies out of what has arrived: strangers, the answer, and copies of it.
void Loop::sortReplies()
{
    int at = 0;
    for (int size = wholeReplySize(m_arriving, at);
         size > 0 && m_exchange.refused.size() < MostRefused;
         at += size, size = wholeReplySize(m_arriving, at)) {
        const QByteArray reply = m_arriving.mid(at, size);
        ReplyFault fault = m_exchange.reply.isEmpty() ? m_guard.early() : ReplyFault();
        if (!fault)
            fault = lengthFault(size);
        if (fault) {
            m_exchange.refused.append({m_line.now(), reply, fault});
            m_guard.setAside(reply, m_owed);
        } else if (m_exchange.reply.isEmpty()) {
            m_exchange.reply = reply;
            m_answers = 1;
            m_proven = m_guard.proven();
            m_counters.doubted += !m_proven;
        } else if (++m_answers; m_exchange.reply != reply && !std::exchange(m_differing, true)) {
            m_guard.setAside(m_exchange.reply, m_owed);
        }
    }
    m_arriving.remove(0, at);
}

// Until when to listen on.
LineTime Loop::patience(LineTime lastCame) const
{
    const int replyLen = m_exchange.frame.replyLen;
    if (m_exchange.reply.isEmpty()) {
        if (int(m_arriving.size()) < replyLen)
            return m_replyUntil;
        if (!beginsReply(m_arriving, 0))
            return LineTime(0);
        // A longer one, somebody else's: to its end, then.
        return std::min<LineTime>(m_replyUntil, lastCame + Moment);
    }
    const LineTime until = m_proven ? LineTime(0) : m_guard.listenUntil();
    if (!beginsReply(m_arriving, 0))
        return until;
    return std::max<LineTime>(until, lastCame + m_line.wireTime(replyLen) + Moment);
}

ReplyFault Loop::lengthFault(int size) const
{
    ReplyFault fault;
    fault.got = size;
    fault.expected = m_exchange.frame.replyLen;
    if (size != fault.expected)
        fault.reason = size < fault.expected ? ReplyFault::TooShort : ReplyFault::TooLong;
    return fault;
}

ReplyFault Loop::examine() const
{
    const QByteArray &reply = m_exchange.reply;
    const int size = int(reply.size());
    ReplyFault fault;
    if (!m_line.isOpen()) {
        fault.reason = ReplyFault::LineLost;
        fault.detail = m_line.errorText();
    } else if (m_differing) {
        fault.reason = ReplyFault::Differ;
    } else if (size == 0 && !m_exchange.refused.isEmpty() && m_exchange.refused.constLast().fault) {
        fault = m_exchange.refused.constLast().fault;
    } else if (size == 0) {
        fault.reason = ReplyFault::NoReply;
        fault.waited = m_settings.replyTimeout;
    } else if (!beginsReply(reply, 0)) {
        fault = formFault(reply);
        if (m_lastRequest.startsWith(reply.left(m_lastRequest.size())))
            fault.reason = ReplyFault::Echo;
    } else if (size == m_exchange.frame.replyLen) {
        fault = formFault(reply);
        const bool acknowledges = m_exchange.frame.readCount == 0;
        if (!fault && acknowledges && !m_proven && m_answers == 1 && m_guard.mayBeCopy(reply))
            fault.reason = ReplyFault::MayBeCopy;
    } else {
        fault = m_guard.early() ? m_guard.early() : lengthFault(size);
    }
    if (fault.reason == ReplyFault::TooEarly && m_settings.baud > 0)
        fault.detail = QString::number(m_settings.baud);
    return fault;
}

Outcome Loop::judge()
{
    if (m_exchange.fault.reason == ReplyFault::LineLost)
        return Outcome::LineLost;
    if (m_exchange.fault && interrupted())
        return Outcome::Interrupted;
    const int result = m_driver.dealRcvFrame(m_exchange.fault ? QByteArray() : m_exchange.reply,
                                             &m_exchange.errorText);
    if (result == ReplyGood) {
        m_guard.accept(m_exchange.reply, m_proven, m_exchange.end);
        return Outcome::Good;
    }
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
    if (failed && (!answered || m_exchange.outcome == Outcome::LineLost))
        m_owed = true;
    else if (m_owed && !m_exchange.tries.isEmpty())
        noteLateness();
    if (m_exchange.fault.reason == ReplyFault::NoReply)
        m_guard.missed();
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

// A line of other settings than the host was told.
void Loop::noteTooFast()
{
    const LineTime now = m_line.now();
    if (m_exchange.outcome == Outcome::Good || m_exchange.fault.reason != ReplyFault::TooEarly)
        m_tooFastSince.reset();
    else if (!m_tooFastSince)
        m_tooFastSince = now;
    else if (now - *m_tooFastSince >= TooFastFor && !std::exchange(m_saidTooFast, true))
        say(m_exchange.fault.hint());
}

void Loop::count()
{
    m_counters.bytesReceived += m_exchange.reply.size();
    for (const RefusedReply &refused : m_exchange.refused) {
        ++(refused.fault ? m_counters.refused : m_counters.askedTwice);
        m_counters.bytesReceived += refused.fault ? 0 : refused.bytes.size();
    }
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
