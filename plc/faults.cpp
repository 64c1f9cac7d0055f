// The fault plan's text form and the dice.
#include "plc/faults.h"
#include "plc/literals.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <cstring>

namespace plc {

namespace {

constexpr int Million = 1000000;
constexpr int LongestMs = 3600 * 1000;

struct Kind
{
    const char *name;
    const char *usual;
    const char *effect;

    bool hasTime() const { return std::strchr(usual, ':') != nullptr; }
};

#define PLC_FAULT_KIND(name, text, usual, effect) {text, usual, effect},
const std::array<Kind, FaultCount> kinds = {{PLC_FAULTS(PLC_FAULT_KIND)}};

/** Reads "12.5%" in millionths, up to four decimals; -1 when it is none. */
int readShare(const QString &text)
{
    const QString number = text.left(text.size() - 1);
    const int point = int(number.indexOf(QLatin1Char('.')));
    const int decimals = point < 0 ? 0 : int(number.size()) - point - 1;
    bool ok = false;
    const double share = number.toDouble(&ok);
    const bool plain = !number.isEmpty() && number.at(0).isDigit() &&
                       number.at(number.size() - 1).isDigit() && !number.contains(QLatin1Char('e'));
    if (!text.endsWith(QLatin1Char('%')) || !ok || !plain || decimals > 4 || share > 999)
        return -1;
    return qRound(share * Million / 100);
}

/** Reads "300ms" or "2s" in milliseconds; -1 when it is neither, or not from 1 ms to 1 h. */
int readTime(const QString &text)
{
    const bool inMs = text.endsWith("ms"_s);
    bool ok = false;
    const int number = text.left(text.size() - (inMs ? 2 : 1)).toInt(&ok);
    if (!ok || !text.endsWith(QLatin1Char('s')) || number < 1)
        return -1;
    const qint64 ms = number * qint64(inMs ? 1 : 1000);
    return ms > LongestMs ? -1 : int(ms);
}

/** Reads one "name=share%[:time[..time]]" into the plan; returns what is wrong, or nothing. */
QString parseShare(const QString &text, FaultPlan *plan)
{
    const QString faultText = text.section(QLatin1Char('='), 0, 0);
    const QString shareText = text.section(QLatin1Char('='), 1).section(QLatin1Char(':'), 0, 0);
    const QString timeText = text.section(QLatin1Char(':'), 1);
    const int ofMillion = readShare(shareText);
    if (ofMillion < 0)
        return "\"%1\" is no fault with its share, expected one like loss=2% or late=1%:300ms"_s
            .arg(text);

    const auto kind = std::find_if(kinds.begin(), kinds.end(), [&faultText](const Kind &each) {
        return faultText == QLatin1String(each.name);
    });
    if (kind == kinds.end()) {
        QStringList known;
        for (const Kind &each : kinds)
            known.append(QLatin1String(each.name));
        return "unknown fault \"%1\", expected one of %2"_s.arg(faultText, known.join(" "_s));
    }

    FaultPlan::Share &share = plan->shares[size_t(kind - kinds.begin())];
    if (share.ofMillion != 0)
        return "\"%1\" is named twice"_s.arg(faultText);
    share.ofMillion = ofMillion;
    if (kind->hasTime() == timeText.isEmpty()) {
        return kind->hasTime() ? "\"%1\" lacks its time, expected one like %2=1%:300ms"_s.arg(
                                     text, QLatin1String(kind->name))
                               : "\"%1\" has a time, expected none: %2=1%"_s.arg(
                                     text, QLatin1String(kind->name));
    }
    if (!kind->hasTime())
        return QString();
    share.ms = readTime(timeText.section(".."_s, 0, 0));
    share.longestMs = readTime(timeText.section(".."_s, -1));
    if (share.ms < 0 || share.longestMs < share.ms)
        return "\"%1\": expected a time from 1ms to 3600s, or two such as 300ms..2s"_s.arg(text);
    return QString();
}

/** Numbers for one reply; the same for the same seed and number on every machine. */
class Dice
{
public:
    Dice(quint32 seed, quint32 number) : m_state(quint64(seed) << 32 | number) {}

    /** From 0 to `sides` - 1. */
    int roll(int sides)
    {
        // SplitMix64: neighbouring numbers give independent sequences.
        m_state += 0x9E3779B97F4A7C15ULL;
        quint64 mixed = m_state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
        mixed ^= mixed >> 31;
        return int((mixed >> 32) * quint64(sides) >> 32);
    }

private:
    quint64 m_state;
};

}  // namespace

const char *faultName(Fault fault)
{
    return kinds[size_t(fault)].name;
}

QString faultsHelp()
{
    QStringList usual;
    QString effects;
    for (const Kind &kind : kinds) {
        usual.append(QLatin1String(kind.name) + QLatin1Char('=') + QLatin1String(kind.usual));
        effects += QStringLiteral("  %1 %2\n")
                       .arg(QLatin1String(kind.name), -7)
                       .arg(QLatin1String(kind.effect));
    }
    return usual.join(QLatin1Char(',')) + QLatin1Char('\n') + effects;
}

QString FaultPlan::parse(const QString &list, FaultPlan *plan)
{
    *plan = FaultPlan();
    const QStringList texts = list.split(QLatin1Char(','));
    for (const QString &text : texts) {
        QString fault = parseShare(text.trimmed(), plan);
        if (!fault.isEmpty())
            return fault;
    }
    qint64 sum = 0;
    for (const Share &share : plan->shares)
        sum += share.ofMillion;
    if (sum > Million)
        return "the shares of \"%1\" add up to more than 100%"_s.arg(list);
    return QString();
}

QVector<Transmission> Faults::transmit(const QByteArray &reply, qint64 nowMs)
{
    // Dice of its own for each reply, so that none depends on what befell those before it.
    Dice dice(m_seed, m_replies++);

    int fault = 0;
    int roll = dice.roll(Million);
    while (fault < FaultCount && roll >= m_plan.shares[size_t(fault)].ofMillion)
        roll -= m_plan.shares[size_t(fault++)].ofMillion;

    const bool muted = nowMs < m_mutedUntilMs;
    if (muted)
        fault = int(Fault::Mute);
    if (fault == FaultCount)
        return {{0, reply}};

    ++m_counts[size_t(fault)];
    if (m_observer)
        m_observer(Fault(fault));
    const FaultPlan::Share &share = m_plan.shares[size_t(fault)];
    const int lastsMs = share.ms + dice.roll(share.longestMs - share.ms + 1);
    const int size = int(reply.size());
    QByteArray bytes = reply;
    switch (Fault(fault)) {
        case Fault::Loss:
            return {};
        case Fault::Cut:
            return {{0, reply.left(size > 1 ? 1 + dice.roll(size - 1) : 0)}};
        case Fault::Flip: {
            const int at = dice.roll(size);
            bytes[at] = char(bytes[at] ^ 1 << dice.roll(8));
            return {{0, bytes}};
        }
        case Fault::Late:
            return {{lastsMs, reply}};
        case Fault::Double:
            return {{0, reply}, {0, reply}};
        case Fault::Noise:
            for (int count = 1 + dice.roll(8); count > 0; --count)
                bytes.prepend(char(dice.roll(256)));
            return {{0, bytes}};
        case Fault::Mute:
            if (!muted)
                m_mutedUntilMs = nowMs + lastsMs;
            return {};
    }
    return {};
}

void Faults::heal()
{
    m_plan = FaultPlan();
    m_mutedUntilMs = -1;
}

}  // namespace plc
