// Line faults: what becomes of a reply on its way out of the controller.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <array>
#include <functional>

namespace plc {

/**
 * A row a fault: its name here and in a plan, what it is usually given there (a time with it, if it
 * lasts), and what becomes of the reply.
 */
// clang-format off
#define PLC_FAULTS(FAULT) \
    FAULT(Loss,   "loss",   "2%",       "the reply is not sent") \
    FAULT(Cut,    "cut",    "1%",       "only its first part is sent") \
    FAULT(Flip,   "flip",   "1%",       "one of its bits is turned") \
    FAULT(Late,   "late",   "1%:300ms", "it is sent later by a time (ms or s, or 2s..5s)") \
    FAULT(Double, "double", "1%",       "it is sent twice") \
    FAULT(Noise,  "noise",  "1%",       "1 to 8 random bytes go before it") \
    FAULT(Mute,   "mute",   "0.1%:2s",  "no reply is sent for a time, beginning with this one")
// clang-format on

#define PLC_FAULT_NAME(name, text, usual, effect) name,
#define PLC_FAULT_ONE(name, text, usual, effect) +1
enum class Fault { PLC_FAULTS(PLC_FAULT_NAME) };
constexpr int FaultCount = PLC_FAULTS(PLC_FAULT_ONE);

/** The fault as written in a plan, such as "loss". */
const char *faultName(Fault fault);

/** A plan with all faults, and a line for each that says what it does, for a help text. */
QString faultsHelp();

/** How often each fault happens and, for Late and Mute, how long it lasts. */
struct FaultPlan
{
    struct Share
    {
        int ofMillion = 0;  ///< replies that meet the fault
        int ms = 0;         ///< delay of Late, silence of Mute: at least
        int longestMs = 0;  ///< and at most; each length is as likely
    };
    std::array<Share, FaultCount> shares{};

    /**
     * Reads a list such as "loss=2%,late=0.5%:300ms,mute=0.1%:2s" into `*plan`. Shares have up to
     * four decimals and add up to 100 % at most; late and mute need a time of 1 ms to 1 h, or two
     * with ".." between: any time from the first to the second. Returns an empty text, or what is
     * wrong; the plan is then of no use.
     */
    static QString parse(const QString &list, FaultPlan *plan);
};

/** Bytes that go out on the line, `afterMs` milliseconds later than they would without faults. */
struct Transmission
{
    int afterMs;
    QByteArray bytes;
};

/**
 * Throws the dice for one reply after the other. A reply meets one fault or none. Seed and number
 * decide what happens to a reply, so a run with the same requests can be repeated; only which
 * replies fall into a silence depends on time.
 */
class Faults
{
public:
    /** Without faults. */
    Faults() = default;
    explicit Faults(const FaultPlan &plan, quint32 seed) : m_plan(plan), m_seed(seed) {}

    /**
     * What goes out in place of `reply`: nothing, one piece or two. `nowMs` is the time on any
     * clock that does not go back.
     */
    QVector<Transmission> transmit(const QByteArray &reply, qint64 nowMs);

    /** Told of each reply that meets a fault, before transmit() returns. */
    void setObserver(std::function<void(Fault)> observer) { m_observer = std::move(observer); }

    /** Ends all faults, a silence under way included. */
    void heal();

    /** Replies that met the fault; for Mute, replies swallowed by a silence. */
    qint64 count(Fault fault) const { return m_counts[size_t(fault)]; }

private:
    FaultPlan m_plan;
    quint32 m_seed = 0;
    quint32 m_replies = 0;
    qint64 m_mutedUntilMs = -1;  ///< end of the silence under way, or -1
    std::array<qint64, FaultCount> m_counts{};
    std::function<void(Fault)> m_observer;
};

}  // namespace plc
