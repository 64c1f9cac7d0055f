// The communication loop and its guards.
#include "host/loop.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>

#include <utility>

namespace host {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

namespace {

enum DriverResult { ReplyGood = 1, RequestGivenUp = 2, SendAgain = 8 };

// A line that never falls silent must not stop the loop; the checksum then has to do.
constexpr int QuietTimesAtMost = 10;

constexpr milliseconds IdlePause(5);

}  // namespace

LoopCounters LoopCounters::operator-(const LoopCounters &earlier) const
{
    LoopCounters difference;
    difference.exchanges = exchanges - earlier.exchanges;
    difference.retries = retries - earlier.retries;
    difference.errors = errors - earlier.errors;
    difference.bytesSent = bytesSent - earlier.bytesSent;
    difference.bytesReceived = bytesReceived - earlier.bytesReceived;
    difference.bytesStale = bytesStale - earlier.bytesStale;
    difference.wordsRead = wordsRead - earlier.wordsRead;
    return difference;
}

Loop::Loop(const Driver &driver, Line &line, const LoopSettings &settings)
    : m_driver(driver), m_line(line), m_settings(settings)
{
    if (m_settings.quietTime == milliseconds(0))
        m_settings.quietTime = m_settings.replyTimeout;
}

Outcome Loop::exchange()
{
    if (!m_line.isOpen())
        return Outcome::LineLost;
    if (m_driver.getSendFrame(&m_exchange.frame) == 0)
        return Outcome::Idle;

    m_exchange.stale = settleLine();
    m_exchange.errorText.clear();
    const QByteArray request = m_exchange.request();
    const int replyLen = m_exchange.frame.replyLen;
    const milliseconds travel =
        std::chrono::ceil<milliseconds>(m_line.wireTime(int(request.size()) + replyLen));

    QElapsedTimer clock;
    clock.start();
    m_exchange.reply.clear();
    if (m_line.send(request)) {
        if (replyIsEarly(clock))
            m_exchange.stale += std::exchange(m_exchange.reply, QByteArray());
        else
            m_exchange.reply += m_line.collect(replyLen - int(m_exchange.reply.size()),
                                               travel + m_settings.replyTimeout);
    }
    m_exchange.outcome = m_line.isOpen() ? judge() : Outcome::LineLost;
    m_exchange.duration = duration_cast<microseconds>(nanoseconds(clock.nsecsElapsed()));

    m_restless = m_exchange.outcome != Outcome::Good;
    count(m_exchange);
    if (observer)
        observer(m_exchange);
    return m_exchange.outcome;
}

bool Loop::runUntil(const std::function<bool()> &done, milliseconds patience)
{
    const QDeadlineTimer deadline(patience);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        const Outcome outcome = exchange();
        if (outcome == Outcome::LineLost)
            return false;
        if (outcome == Outcome::Idle)
            QThread::msleep(static_cast<unsigned long>(IdlePause.count()));
    }
    return true;
}

bool Loop::runUntilIdle(milliseconds patience)
{
    const QDeadlineTimer deadline(patience);
    // The driver pauses once after a run of writes, so only two pauses in a row are the end.
    for (int idle = 0; idle < 2;) {
        const Outcome outcome = exchange();
        if (outcome == Outcome::LineLost || deadline.hasExpired())
            return false;
        idle = outcome == Outcome::Idle ? idle + 1 : 0;
    }
    return true;
}

// Throws away what nobody waits for any more. Where that may not have been all, waits for silence.
QByteArray Loop::settleLine()
{
    if (m_settings.listenFirst > milliseconds(0))
        QThread::msleep(static_cast<unsigned long>(m_settings.listenFirst.count()));
    QByteArray stale = m_line.discard();
    if (!m_restless && stale.isEmpty())
        return stale;
    const QDeadlineTimer deadline(QuietTimesAtMost * m_settings.quietTime);
    while (!deadline.hasExpired()) {
        const QByteArray late = m_line.collect(1, m_settings.quietTime);
        if (late.isEmpty())
            break;
        stale += late + m_line.discard();
    }
    return stale;
}

// A reply begins when its request has left. What is there sooner, or is more than the line can have
// carried since, answers an earlier request; what is not becomes the beginning of the reply.
bool Loop::replyIsEarly(const QElapsedTimer &sending)
{
    if (!m_settings.paced)
        return false;
    const microseconds leaving = m_line.wireTime(m_exchange.frame.sendLen);
    QThread::usleep(static_cast<unsigned long>((leaving * 4 / 5).count()));
    m_exchange.reply = m_line.discard();
    const nanoseconds sinceLeft = nanoseconds(sending.nsecsElapsed()) - leaving;
    const int bytes = int(m_exchange.reply.size());
    // Of a complete one nobody can tell any more: this thread has slept for too long.
    return bytes > 0 && (bytes >= m_exchange.frame.replyLen || m_line.wireTime(bytes) > sinceLeft);
}

Outcome Loop::judge()
{
    const bool complete = m_exchange.reply.size() == m_exchange.frame.replyLen;
    switch (
        m_driver.dealRcvFrame(complete ? m_exchange.reply : QByteArray(), &m_exchange.errorText)) {
        case ReplyGood:
            return Outcome::Good;
        case SendAgain:
            return Outcome::Again;
        case RequestGivenUp:
            return Outcome::GivenUp;
        default:
            return Outcome::Idle;  // a callback has started the driver over
    }
}

void Loop::count(const Exchange &exchange)
{
    m_counters.bytesSent += exchange.frame.sendLen;
    m_counters.bytesReceived += exchange.reply.size();
    m_counters.bytesStale += exchange.stale.size();
    if (exchange.outcome == Outcome::Good) {
        ++m_counters.exchanges;
        m_counters.wordsRead += exchange.frame.readCount;
    } else if (exchange.outcome == Outcome::Again) {
        ++m_counters.retries;
    } else if (exchange.outcome == Outcome::GivenUp) {
        ++m_counters.errors;
    }
}

}  // namespace host
