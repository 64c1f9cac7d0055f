// Lays the soak's result out in 100 columns, or as one JSON object.
#include "host/soak/report.h"

#include "host/output/table.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>

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

/** A number with the words for people behind it, and its name in JSON. */
struct Count
{
    const char *name;
    const char *words;
    qint64 number;
};

struct Row
{
    const char *name;  // in JSON
    const char *title;
    QVector<Count> counts;
};

QVector<Row> rowsOf(const Soak &soak)
{
    const Soak::Counts &counts = soak.counts();
    return {{"monitored", "monitored", {{"sets", "sets of addresses", counts.registrations}}},
            {"writes",
             "writes",
             {{"made", "made", counts.writes},
              {"acknowledged", "acknowledged", counts.writesAcknowledged},
              {"givenUp", "given up", counts.writesGivenUp},
              {"replaced", "replaced by newer", counts.writesReplaced}}},
            {"conditionReads",
             "condition reads",
             {{"made", "made", counts.conditionReads},
              {"failed", "failed", counts.conditionReadsFailed}}},
            {"recipes",
             "recipes",
             {{"written", "written", counts.recipesWritten},
              {"read", "read", counts.recipesRead},
              {"failed", "of these failed", counts.recipesFailed}}},
            {"requests",
             "requests",
             {{"sent", "sent", counts.requests},
              {"good", "answered well", soak.line().exchanges},
              {"repeated", "to be repeated", soak.line().retries},
              {"givenUp", "given up", soak.line().errors},
              {"refused", "replies set aside", soak.line().refused}}},
            {"compared",
             "compared",
             {{"words", "words of replies", counts.wordsCompared},
              {"values", "values that the driver showed, and the whole memory",
               counts.valuesCompared}}}};
}

}  // namespace

void printSoak(QTextStream &out, const SoakSetup &setup, const Soak &soak,
               const QString &controllerReport)
{
    out << "A soak of the driver: a panel at random on a line with faults, and what is left of it."
        << '\n';
    Table table({{Table::Left, 17, 3}, {Table::Left, 0, 0}});
    table.add({"library"_s, setup.driver});
    table.add({"line"_s, setup.line});
    table.add({"faults"_s, "%1, seed %2"_s.arg(setup.faults).arg(setup.seed)});
    for (const Row &row : rowsOf(soak)) {
        QStringList texts;
        for (const Count &count : row.counts)
            texts.append("%1 %2"_s.arg(count.number).arg(QLatin1String(count.words)));
        table.add({QLatin1String(row.title), texts.join(", "_s)});
    }
    table.add({"took"_s, "%1 s of the line's time"_s.arg(soak.seconds(), 0, 'f', 0)});
    for (const QString &text : controllerReport.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        static const QRegularExpression none(" (?!total)[a-z-]+=0\\b"_s);
        table.add({text.section(QLatin1Char(':'), 0, 0),
                   text.section(QLatin1Char(':'), 1).remove(none).trimmed()});
    }
    table.print(out);
    out << '\n';
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
    QJsonObject claims;
    for (int claim = 0; claim < ClaimCount; ++claim)
        claims[QLatin1String(ClaimNames[claim])] =
            QJsonArray::fromStringList(findingsAgainst(soak, claim));
    QJsonObject result{
        {"right"_s, soak.findings().isEmpty()},
        {"faults"_s, setup.faults},
        {"seed"_s, qint64(setup.seed)},
        {"seconds"_s, std::round(soak.seconds() * 1000) / 1000},
        {"controller"_s, countsOf(controllerReport)},
        {"findings"_s, claims},
    };
    for (const Row &row : rowsOf(soak))
        for (const Count &count : row.counts) {
            QJsonObject object = result[QLatin1String(row.name)].toObject();
            object[QLatin1String(count.name)] = count.number;
            result[QLatin1String(row.name)] = object;
        }
    out << QJsonDocument(result).toJson();
}

}  // namespace host
