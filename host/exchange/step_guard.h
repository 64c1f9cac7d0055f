// Whose reply it is: what times, order and lengths tell of it, for a link whose replies name
// nobody.
#pragma once

#include "host/frames/reply_fault.h"

#include <deque>
#include <functional>
#include <optional>

namespace host {

/** What an exchange says of the replies that were accepted before it. */
enum class Step {
    Unproven,  ///< nothing
    Proven,    ///< each was the answer to its own request
    Unsure,    ///< nothing, and nothing that comes later will: replies were too many
    Lost       ///< one at least was another request's; from here on the line is in step again
};

/**
 * The loop tells it what is sent, how many bytes are there at which time and what is set aside; it
 * knows neither line nor driver. All times are the line's.
 */
class StepGuard
{
public:
    /** How long so many bytes travel; 0 when nothing paces them. */
    using Travel = std::function<LineTime(int bytes)>;

    /** timeout: how long the controller may think. */
    StepGuard(Travel travel, LineTime timeout) : m_travel(std::move(travel)), m_timeout(timeout) {}

    // One exchange.

    /** A request is handed to the line; firstTry: when that was begun for the first of its tries.
     */
    void ask(int requestSize, int replySize, LineTime begin, LineTime firstTry);

    /** The line has taken all of it. */
    void sent(LineTime now);

    /** So many bytes of a reply are there, seen between the two times. */
    void look(LineTime before, int bytes, LineTime after);

    /** Why the reply that is arriving cannot be the answer: a part of it was there too early. */
    const ReplyFault &early() const { return m_early; }

    /** The reply's end, whenever it is seen, cannot have come before the answer's. */
    bool proven() const;

    /** As the reply accepted last, when that was another request's. */
    bool mayBeCopy(const QByteArray &reply) const
    {
        return reply == m_accepted && m_begin == m_firstTry;
    }

    /** How long the answer may still take, behind a reply that is not proven. */
    LineTime listenUntil() const;

    /**
     * How long a reply that is still to come may take; 0 on a line that has never brought one that
     * nobody waited for.
     */
    LineTime rest() const { return m_disturbed ? answersWithin() : LineTime(0); }

    /** A whole reply was thrown away. owed: one was to be expected. */
    void setAside(const QByteArray &stranger, bool owed);

    /** The answer is accepted; proven: proven() was true when all of it had come. */
    void accept(const QByteArray &reply, bool proven, LineTime now);

    /** Nothing came. That may have put a line that was out of step back into it. */
    void missed();

    // What the exchanges prove of each other.

    struct Verdict
    {
        Step step = Step::Unproven;
        LineTime since{0};  ///< begin of the first exchange that it is about
    };

    /** What is known behind an exchange of those accepted before it; to be asked once for each. */
    Verdict verdict();

    /** Accepted replies have waited long for their proof: another length is wanted. */
    bool lengthWanted(LineTime now) const;

    /** Words to read, so that the reply is of another length than the one accepted last. */
    int provingWords() const;

private:
    LineTime answersWithin() const;
    LineTime earliestEnd(int requestSize, int replySize) const;

    Travel m_travel;
    LineTime m_timeout;

    int m_requestSize = 0;
    int m_replySize = 0;
    LineTime m_begin{0};
    LineTime m_firstTry{0};
    LineTime m_sent{0};
    LineTime m_seenBefore{0};  // the latest look
    LineTime m_seenBy{0};
    int m_seen = 0;
    std::optional<LineTime> m_lateBy;  // no reply of n bytes ends before this and travel(n)
    ReplyFault m_early;
    std::deque<LineTime> m_thinking;  // of the latest proven answers, beyond the travel

    QByteArray m_accepted;            // the last one
    bool m_acceptedOnce = false;      // its request was sent once
    std::optional<LineTime> m_since;  // the first accepted one that is not proven
    Step m_found = Step::Unproven;    // by this exchange
    LineTime m_foundSince{0};
    bool m_strangers = false;  // since the last accepted one
    bool m_disturbed = false;  // there were some, ever
    bool m_hurry = true;       // the latest verdict was no proof
};

}  // namespace host
