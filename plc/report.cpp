// Counts and requests as text.
#include "plc/report.h"
#include "plc/literals.h"

namespace plc {

namespace {

const std::array<const char *, 4> commandNames = {"read", "write", "set", "clear"};

/** " name=number", and the number added to `*total`. */
QString pair(const char *name, qint64 number, qint64 *total)
{
    *total += number;
    return " %1=%2"_s.arg(QLatin1String(name), QString::number(number));
}

QString line(const char *title, qint64 total, const QString &pairs)
{
    return "%1: total=%2%3\n"_s.arg(QLatin1String(title), QString::number(total), pairs);
}

}  // namespace

QString countsText(const Controller::Counts &counts, const Faults &faults)
{
    QString served;
    QString refused;
    QString faulty;
    qint64 servedTotal = 0;
    qint64 refusedTotal = 0;
    qint64 faultyTotal = 0;
    for (size_t i = 0; i < commandNames.size(); ++i)
        served += pair(commandNames[i], counts.served[i], &servedTotal);
    for (int i = int(Verdict::Served) + 1; i < VerdictCount; ++i)
        refused += pair(verdictName(Verdict(i)), counts.of(Verdict(i)), &refusedTotal);
    for (int i = 0; i < FaultCount; ++i)
        faulty += pair(faultName(Fault(i)), faults.count(Fault(i)), &faultyTotal);
    return line("served", servedTotal, served) + line("refused", refusedTotal, refused) +
           line("faults", faultyTotal, faulty) + "stray bytes: %1\n"_s.arg(counts.strayBytes);
}

QString requestText(const Request &request, Verdict verdict)
{
    if (verdict != Verdict::Served) {
        QByteArray hex;
        for (int i = 0; i < int(request.frame.size()); ++i)
            hex += (i > 0 ? " " : "") + request.frame.mid(i, 1).toHex();
        return "refused (%1): %2"_s.arg(QLatin1String(verdictName(verdict)),
                                        QString::fromLatin1(hex.toUpper()));
    }
    const auto command = QByteArray(Controller::Commands).indexOf(request.command);
    const QString text = "%1 %2 %3"_s.arg(QLatin1String(commandNames[size_t(command)]),
                                          QString::fromLatin1(Memory::name(request.device)),
                                          QString::number(request.word));
    if (request.command == 'r')
        return text + " x %1"_s.arg(request.words);
    if (request.command != 'w')
        return text +
               " mask %1"_s.arg(QString::number(request.mask, 16).toUpper(), 4, QLatin1Char('0'));
    QString values;
    for (const quint16 value : request.values)
        values += " %1"_s.arg(value);
    return text + " ="_s + values;
}

}  // namespace plc
