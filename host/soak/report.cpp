// Lays the soak's result out in 100 columns, or as one JSON object.
#include "host/soak/report.h"

#include "host/output/table.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr int FindingsShown = 10;  // of each claim

constexpr const char *Claims[ClaimCount] = {
    "every write that was acknowledged is in the controller",
    "no bit or word that nobody wrote has changed",
    "what the host reads is what the controller holds",
    "no request was lost without a failure report",
};
constexpr const char *ClaimNames[ClaimCount] = {"kept", "untouched", "readRight", "accounted"};

QStringList findingsAgainst(const Soak &soak, int claim)
{
    QStringList texts;
    for (const Finding &finding : soak.findings())
        if (int(finding.claim) == claim)
            texts.append(finding.text);
    return texts;
}

// "served: total=7 read=4" as {"served": {"total": 7, "read": 4}}
QJsonObject countsOf(const QString &controllerReport)
{
    static const QRegularExpression pair("([a-z-]+)=([0-9]+)"_s);
    QJsonObject counts;
    for (const QString &line : controllerReport.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        QJsonObject pairs;
        for (auto match = pair.globalMatch(line); match.hasNext();) {
            const QRegularExpressionMatch found = match.next();
            pairs[found.captured(1)] = found.captured(2).toLongLong();
        }
        if (!pairs.isEmpty())
            counts[line.section(QLatin1Char(':'), 0, 0)] = pairs;
    }
    return counts;
}

Table newTable()
{
    return Table({{Table::Left, 17, 3}, {Table::Left, 0, 0}});
}

}  // namespace

void printSoak(QTextStream &out, const SoakSetup &setup, const Soak &soak,
               const QString &controllerReport)
{
    const Soak::Counts &counts = soak.counts();
    const WriteLedger::Counts &writes = soak.writes();
    const LoopCounters &line = soak.line();
    out << "A soak of the driver: a panel at random on a line with faults, and what is left of it."
        << '\n';
    Table given = newTable();
    given.add({"library"_s, setup.driver});
    given.add({"line"_s, setup.line});
    given.add({"faults"_s, "%1, seed %2"_s.arg(setup.faults).arg(setup.seed)});
    given.print(out);

    Table panel = newTable();
    panel.add({"monitored"_s, countText(counts.registrations, "set") + " of addresses"_s});
    panel.add({"wrote"_s,
               "%1 times: %2 acknowledged, %3 given up, %4 replaced by newer"_s.arg(writes.made)
                   .arg(writes.acknowledged)
                   .arg(writes.givenUp)
                   .arg(writes.replaced)});
    panel.add(
        {"condition reads"_s,
         "%1, of which %2 failed"_s.arg(counts.conditionReads).arg(counts.conditionReadsFailed)});
    panel.add({"recipes"_s, "%1 written, %2 read, of which %3 failed"_s.arg(counts.recipesWritten)
                                .arg(counts.recipesRead)
                                .arg(counts.recipesFailed)});
    panel.print(out << "\nWhat the panel did\n");

    Table its = newTable();
    its.add({"requests"_s,
             "%1 sent: %2 answered well, %3 to be repeated, %4 given up"_s.arg(counts.requests)
                 .arg(line.exchanges)
                 .arg(line.retries)
                 .arg(line.errors)});
    its.add({"set aside"_s, "%1 replies of other requests"_s.arg(line.refused)});
    its.add({"took"_s, "%1 s of the line's time"_s.arg(soak.seconds(), 0, 'f', 0)});
    for (const QString &text : controllerReport.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        static const QRegularExpression none(" (?!total)[a-z-]+=0\\b"_s);
        its.add({text.section(QLatin1Char(':'), 0, 0),
                 text.section(QLatin1Char(':'), 1).remove(none).trimmed()});
    }
    its.print(out << "\nWhat the line did\n");

    Table verdict = newTable();
    verdict.add({"compared"_s,
                 "%1 words of replies, %2 values that the driver showed, "
                 "the whole memory"_s.arg(counts.wordsCompared)
                     .arg(counts.valuesCompared)});
    verdict.print(out << "\nWhat came of it\n");
    for (int claim = 0; claim < ClaimCount; ++claim) {
        const QStringList findings = findingsAgainst(soak, claim);
        out << "   " << (findings.isEmpty() ? "ok     " : "WRONG  ") << Claims[claim] << '\n';
        for (const QString &text : findings.mid(0, FindingsShown))
            out << "          " << text << '\n';
        if (findings.size() > FindingsShown)
            out << "          and " << findings.size() - FindingsShown << " more\n";
    }
}

void printSoakAsJson(QTextStream &out, const SoakSetup &setup, const Soak &soak,
                     const QString &controllerReport)
{
    const Soak::Counts &counts = soak.counts();
    const WriteLedger::Counts &writes = soak.writes();
    QJsonObject claims;
    for (int claim = 0; claim < ClaimCount; ++claim)
        claims[QLatin1String(ClaimNames[claim])] =
            QJsonArray::fromStringList(findingsAgainst(soak, claim));
    const QJsonObject result{
        {"right"_s, soak.findings().isEmpty()},
        {"faults"_s, setup.faults},
        {"seed"_s, qint64(setup.seed)},
        {"requests"_s, QJsonObject{{"sent"_s, counts.requests},
                                   {"good"_s, soak.line().exchanges},
                                   {"repeated"_s, soak.line().retries},
                                   {"givenUp"_s, soak.line().errors},
                                   {"refused"_s, soak.line().refused}}},
        {"seconds"_s, std::round(soak.seconds() * 1000) / 1000},
        {"writes"_s, QJsonObject{{"made"_s, writes.made},
                                 {"acknowledged"_s, writes.acknowledged},
                                 {"givenUp"_s, writes.givenUp},
                                 {"replaced"_s, writes.replaced}}},
        {"conditionReads"_s,
         QJsonObject{{"made"_s, counts.conditionReads}, {"failed"_s, counts.conditionReadsFailed}}},
        {"recipes"_s, QJsonObject{{"written"_s, counts.recipesWritten},
                                  {"read"_s, counts.recipesRead},
                                  {"failed"_s, counts.recipesFailed}}},
        {"controller"_s, countsOf(controllerReport)},
        {"findings"_s, claims},
    };
    out << QJsonDocument(result).toJson();
}

}  // namespace host
