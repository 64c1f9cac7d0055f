// The controller's side of the link: finds requests among the bytes that come in, carries them
// out on the memory and makes the replies. No input or output of its own.
#pragma once

#include "plc/memory.h"

#include <QtCore/QByteArray>
#include <QtCore/QVector>

#include <array>
#include <functional>

namespace plc {

/** What became of a request: served, or why it was ignored. */
enum class Verdict {
    Served,
    Unfinished,    ///< cut off by the next request's opening byte or by silence
    TooLong,       ///< no closing byte where the longest request has it
    Layout,        ///< not the length or the fixed characters of its command
    Checksum,      ///< checksum wrong, or not two upper-case hex digits
    Command,       ///< unknown command letter
    Device,        ///< unknown device letter
    Digits,        ///< a character other than an upper-case hex digit in a number
    ByteCount,     ///< odd, zero, or not what the data amounts to
    OddAddress,    ///< a byte address between two words
    BeyondDevice,  ///< reaches past the device's last word
    Mask,          ///< does not name exactly one bit
};
constexpr int VerdictCount = int(Verdict::Mask) + 1;

/** The verdict as a short text for reports, such as "odd-address". */
const char *verdictName(Verdict verdict);

/** A request as understood. Of one that was not served only the frame has a meaning. */
struct Request
{
    QByteArray frame;         ///< its bytes, opening and closing byte included
    char command = 0;         ///< 'r' read words, 'w' write words, 'o' set bit, 'n' clear bit
    char device = 0;          ///< device letter
    int word = 0;             ///< number of its first word
    int words = 0;            ///< how many words it covers; 1 for a bit
    quint16 mask = 0;         ///< as sent: one bit set for 'o', one bit clear for 'n', else 0
    QVector<quint16> values;  ///< the words to write, for 'w'
};

class Controller
{
public:
    /** Commands in the order in which Counts::served counts them. */
    static constexpr char Commands[] = "rwon";

    struct Counts
    {
        std::array<qint64, VerdictCount> verdicts{};  ///< requests by verdict, served ones included
        std::array<qint64, 4> served{};               ///< served requests by command
        qint64 strayBytes = 0;                        ///< bytes that belonged to no request

        qint64 of(Verdict verdict) const { return verdicts[size_t(verdict)]; }
    };

    /** Told of every request, served or not, after it was carried out; the reply may be empty. */
    using Observer = std::function<void(const Request &, Verdict, const QByteArray &reply)>;

    /** Works on `memory`, which stays the caller's and must outlive the controller. */
    explicit Controller(Memory &memory) : m_memory(memory) {}

    /** Takes the next bytes off the line, however cut; returns the replies due after them. */
    QByteArray receive(const QByteArray &bytes);
    /** The same for one byte: returns the reply when the byte completes a request, else "". */
    QByteArray receive(char byte);
    /** The line has been silent too long for the request under way, if any: it is given up. */
    void silence();

    void setObserver(Observer observer) { m_observer = std::move(observer); }
    const Counts &counts() const { return m_counts; }

private:
    Request takeFrame();
    QByteArray finish(Verdict verdict, const Request &request);
    QByteArray carryOut(const Request &request);

    Memory &m_memory;
    QByteArray
        m_frame;  ///< the request under way, from its opening byte on; empty between requests
    Counts m_counts;
    Observer m_observer;
};

}  // namespace plc
