// The look, the doubt, the length and the proof.
#include "host/exchange/step_guard.h"

#include <algorithm>

namespace host {

using std::chrono::milliseconds;

namespace {

// What the clocks of host and controller may differ by.
constexpr int EarlyPercent = 95;

constexpr size_t AnswersRemembered = 100;
constexpr milliseconds ThinkingMargin(10);
constexpr milliseconds ThinkingNotKnown(500);

constexpr milliseconds ProveEvery(900);  // so that it is done within the second
constexpr int LinePartToProve = 33;      // one of so many, on a slow line
constexpr int ProvingBytes = 27;         // request and reply of two words
constexpr int OneWordReply = 9;

}  // namespace

void StepGuard::ask(int requestSize, int replySize, LineTime begin, LineTime firstTry)
{
    m_requestSize = requestSize;
    m_replySize = replySize;
    m_begin = m_sent = begin;
    m_firstTry = firstTry;
    m_seen = 0;
    m_lateBy.reset();
    m_early = ReplyFault();
}

void StepGuard::sent(LineTime now)
{
    m_sent = now;
}

// Of k bytes seen the next arrives behind the look at the earliest, and the others behind that;
// where all were there already, nothing is known.
void StepGuard::look(LineTime before, int bytes, LineTime after)
{
    m_seenBefore = before;
    m_seenBy = after;
    m_seen = bytes;
    if (bytes < m_replySize) {
        const LineTime lateBy = before - m_travel(bytes + 1);
        m_lateBy = std::max(m_lateBy.value_or(lateBy), lateBy);
    }
    const LineTime expected = earliestEnd(m_requestSize, bytes);
    if (bytes == 0 || m_early || after - m_firstTry >= expected)
        return;
    m_early.reason = ReplyFault::TooEarly;
    m_early.waited = after - m_firstTry;
    m_early.expectedTime = expected;
}

bool StepGuard::proven() const
{
    const LineTime earliest = earliestEnd(m_requestSize, m_replySize);
    return earliest == LineTime(0) ||
           (m_lateBy && *m_lateBy + m_travel(m_replySize) - m_firstTry >= earliest);
}

// A copy that comes first holds the answer up for as long as it travels.
LineTime StepGuard::listenUntil() const
{
    return m_sent + m_travel(m_requestSize + 2 * m_replySize) + answersWithin();
}

LineTime StepGuard::answersWithin() const
{
    const auto longest = std::max_element(m_thinking.cbegin(), m_thinking.cend());
    return std::min<LineTime>(m_timeout, longest == m_thinking.cend()
                                             ? LineTime(ThinkingNotKnown)
                                             : 2 * *longest + ThinkingMargin);
}

// One as long as the reply accepted last, and another, is what should have been accepted.
void StepGuard::setAside(const QByteArray &stranger, bool owed)
{
    const int size = int(stranger.size());
    if (m_lateBy)
        *m_lateBy += m_travel(size);
    m_early = ReplyFault();
    if (m_seen >= size)
        look(m_seenBefore, m_seen - size, m_seenBy);
    m_strangers = m_disturbed = true;
    if (!m_since || size != m_accepted.size() || stranger == m_accepted)
        return;
    m_found = std::max(m_found, owed || !m_acceptedOnce ? Step::Unsure : Step::Lost);
    m_foundSince = *m_since;
}

void StepGuard::missed()
{
    if (!m_since)
        return;
    m_found = std::max(m_found, Step::Unsure);
    m_foundSince = *m_since;
}

void StepGuard::accept(const QByteArray &reply, bool proven, LineTime now)
{
    const bool once = m_begin == m_firstTry;
    if (once && proven) {
        m_thinking.push_back(now - m_begin - m_travel(m_requestSize + m_replySize));
        if (m_thinking.size() > AnswersRemembered)
            m_thinking.pop_front();
    }
    if (m_since && m_found == Step::Unproven && reply.size() != m_accepted.size()) {
        m_found = m_strangers ? Step::Unsure : Step::Proven;
        m_foundSince = *m_since;
    }
    if (!m_since || m_found != Step::Unproven)
        m_since = m_begin;
    m_accepted = reply;
    m_acceptedOnce = once;
    m_strangers = false;
}

StepGuard::Verdict StepGuard::verdict()
{
    const Verdict verdict{m_found, m_foundSince};
    if (m_found != Step::Unproven)
        m_hurry = m_found != Step::Proven;
    if (m_found > Step::Proven && m_since && *m_since == m_foundSince)
        m_since.reset();  // the exchange itself came to nothing
    m_found = Step::Unproven;
    return verdict;
}

// Wanted at once where there was no proof yet, or it failed: nobody is to wait for his first value.
bool StepGuard::lengthWanted(LineTime now) const
{
    const LineTime every = std::max<LineTime>(ProveEvery, LinePartToProve * m_travel(ProvingBytes));
    return m_since && (m_hurry || now - *m_since >= every);
}

int StepGuard::provingWords() const
{
    return m_accepted.size() == OneWordReply ? 2 : 1;
}

LineTime StepGuard::earliestEnd(int requestSize, int replySize) const
{
    return m_travel(requestSize + replySize) * EarlyPercent / 100;
}

}  // namespace host
