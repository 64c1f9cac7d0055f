// The fault plan's text form and the dice.
#include "plc/faults.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>

namespace plc {

namespace {

constexpr int Million = 1000000;
constexpr int LongestMs = 3600 * 1000;

const std::array<const char *, FaultCount> names = {"loss",   "cut",   "flip", "late",
                                                    "double", "noise", "mute"};

bool hasTime(Fault fault)
{
    return fault == Fault::Late || fault == Fault::Mute;
}

/** Reads one "name=share%[:time]" into the plan; returns what is wrong, or an empty text. */
QString parseShare(const QString &text, FaultPlan *plan)
{
    static const QRegularExpression form(
        QStringLiteral(R"(^([a-z]+)=(\d{1,3}(?:\.\d{1,4})?)%(?::(\d{1,7})(ms|s))?$)"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return QStringLiteral("\"%1\" is not a fault, expected one like loss=2% or late=1%:300ms")
            .arg(text);

    const auto name = std::find(names.begin(), names.end(), match.captured(1));
    if (name == names.end()) {
        QStringList known;
        for (const char *each : names)
            known.append(QLatin1String(each));
        return QStringLiteral("unknown fault \"%1\", expected one of %2")
            .arg(match.captured(1), known.join(QLatin1Char(' ')));
    }

    const Fault fault = Fault(name - names.begin());
    FaultPlan::Share &share = plan->shares[size_t(fault)];
    if (share.ofMillion != 0)
        return QStringLiteral("\"%1\" is named twice").arg(match.captured(1));
    share.ofMillion = qRound(match.captured(2).toDouble() * Million / 100);
    if (hasTime(fault) != !match.captured(3).isEmpty()) {
        return hasTime(fault)
                   ? QStringLiteral("\"%1\" lacks its time, expected one like %2=1%:300ms")
                         .arg(text, QLatin1String(*name))
                   : QStringLiteral("\"%1\" has a time, expected none: %2=1%")
                         .arg(text, QLatin1String(*name));
    }
    const qint64 ms =
        match.captured(3).toLongLong() * (match.captured(4) == QLatin1String("s") ? 1000 : 1);
    if (hasTime(fault) && (ms < 1 || ms > LongestMs))
        return QStringLiteral("\"%1\" lasts too long or not at all, expected 1ms to 3600s")
            .arg(text);
    share.ms = int(ms);
    return QString();
}

}  // namespace

const char *faultName(Fault fault)
{
    return names[size_t(fault)];
}

QString FaultPlan::parse(const QString &list, FaultPlan *plan)
{
    *plan = FaultPlan();
    for (const QString &text : list.split(QLatin1Char(','))) {
        const QString fault = parseShare(text.trimmed(), plan);
        if (!fault.isEmpty())
            return fault;
    }
    qint64 sum = 0;
    for (const Share &share : plan->shares)
        sum += share.ofMillion;
    if (sum > Million)
        return QStringLiteral("the shares of \"%1\" add up to more than 100%").arg(list);
    return QString();
}

QVector<Transmission> Faults::transmit(const QByteArray &reply, qint64 nowMs)
{
    // Dice of its own for each reply, so that none depends on what befell those before it.
    const quint32 seeds[] = {seed_, replies_++};
    QRandomGenerator dice(seeds);

    int fault = 0;
    int roll = dice.bounded(Million);
    while (fault < FaultCount && roll >= plan_.shares[size_t(fault)].ofMillion)
        roll -= plan_.shares[size_t(fault++)].ofMillion;

    const bool muted = nowMs < mutedUntilMs_;
    if (muted)
        fault = int(Fault::Mute);
    if (fault == FaultCount || reply.isEmpty())
        return {{0, reply}};

    ++counts_[size_t(fault)];
    const int size = int(reply.size());
    QByteArray bytes = reply;
    switch (Fault(fault)) {
        case Fault::Loss:
            return {};
        case Fault::Cut:
            return {{0, reply.left(size > 1 ? dice.bounded(1, size) : 0)}};
        case Fault::Flip: {
            const int at = dice.bounded(size);
            bytes[at] = char(bytes[at] ^ 1 << dice.bounded(8));
            return {{0, bytes}};
        }
        case Fault::Late:
            return {{plan_.shares[size_t(fault)].ms, reply}};
        case Fault::Double:
            return {{0, reply}, {0, reply}};
        case Fault::Noise:
            for (int count = dice.bounded(1, 9); count > 0; --count)
                bytes.prepend(char(dice.bounded(256)));
            return {{0, bytes}};
        case Fault::Mute:
            if (!muted)
                mutedUntilMs_ = nowMs + plan_.shares[size_t(fault)].ms;
            return {};
    }
    return {};
}

void Faults::heal()
{
    plan_ = FaultPlan();
    mutedUntilMs_ = -1;
}

}  // namespace plc
