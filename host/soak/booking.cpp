// How the soak books what came over the line, and what it compares with its books.
#include "host/frames/frame_text.h"
#include "host/soak/soak.h"

#include <algorithm>

namespace host {

void Soak::book(const Exchange &exchange)
{
    ++m_counts.requests;
    const bool good = exchange.outcome == Outcome::Good;
    const bool givenUp = exchange.outcome == Outcome::GivenUp;
    const bool reads = exchange.frame.readCount > 0;
    if (good && reads)
        checkReply(exchange);
    if (m_recipe) {
        bookRecipe(exchange);
        m_inFlight = false;  // looked at between transfers only
        return;
    }

    const bool serveWrite = WriteLedger::serves(exchange.frame);
    const bool firstOfTwo = serveWrite && reads;
    m_inFlight = !givenUp && !(good && !firstOfTwo);
    if (serveWrite) {
        if (!m_inFlight)
            m_ledger.end(exchange);
    } else if (exchange.frame.var.kind == Session::CyclicReadKind) {
        m_polls += good;
    } else if (givenUp && m_conditionRead) {
        // The end is announced only where the last part of the read fails.
        conditionReadEnded(false);
    }
}

void Soak::bookRecipe(const Exchange &exchange)
{
    const bool acknowledged = exchange.outcome == Outcome::Good;
    const bool givenUp = exchange.outcome == Outcome::GivenUp;
    m_recipe->failed = m_recipe->failed || givenUp;
    if (!m_recipe->written || exchange.frame.readCount > 0 || !(acknowledged || givenUp))
        return;
    const VARIABLE &block = exchange.frame.var;
    for (const Shown &entry : std::as_const(m_recipe->entries)) {
        const int end =
            std::min(block.startAddr + block.count, entry.point.address + entry.point.count);
        Point part = entry.point;
        part.address = std::max(block.startAddr, entry.point.address);
        part.count = end - part.address;
        if (block.regName != entry.point.regName || part.count < 1)
            continue;
        m_model.write(part, entry.values.mid(part.address - entry.point.address, part.count),
                      acknowledged);
        m_recipe->acknowledged += acknowledged ? part.count : 0;
    }
}

// The words as they came over the line, whatever the driver makes of them.
void Soak::checkReply(const Exchange &exchange)
{
    const VARIABLE &item = exchange.frame.var;
    const RegisterType *type = m_identity.type(item.regName);
    if (!type)
        return report({Claim::ReadRight, "a read of the unknown type \"%1\""_s.arg(item.regName)});
    const Point point{item.stationNo, item.regName, item.startAddr, 1, type->isBit};
    WordAddress address = placeOf(point, 0).word;
    for (const int word : readReply(exchange.reply, exchange.request(), 0).words) {
        ++m_counts.wordsCompared;
        if (const auto finding = m_model.judge(address, word))
            report(*finding);
        ++address.second;
    }
}

void Soak::checkRecipe(const QVector<int> &firstUnits)
{
    ++(m_recipe->written ? m_counts.recipesWritten : m_counts.recipesRead);
    if (m_session.recipeBusy())
        return report({Claim::Accounted, "a recipe transfer does not end"_s});
    if (m_recipe->failed) {
        ++m_counts.recipesFailed;
        return;
    }
    int expected = 0;
    for (int entry = 0; entry < m_recipe->entries.size(); ++entry) {
        const Point &point = m_recipe->entries[entry].point;
        expected += point.count;
        QVector<int> values;
        for (int i = 0; i < point.count; ++i)
            values.append(m_session.recipeUnit(firstUnits[entry] + i));
        if (!m_recipe->written)
            checkValues("a recipe", point, values);
    }
    if (m_recipe->written && m_recipe->acknowledged != expected)
        report({Claim::Accounted,
                "a recipe write ended with %1 of %2 values sent"_s.arg(m_recipe->acknowledged)
                    .arg(expected)});
}

void Soak::conditionReadEnded(bool done)
{
    if (!m_conditionRead)
        return report({Claim::Accounted, "a condition read ended twice"_s});
    const Point point = *m_conditionRead;
    m_conditionRead.reset();
    m_counts.conditionReadsFailed += !done;
    // While writes are outstanding the driver shows what they will bring.
    if (done && m_undisturbed)
        checkValues("a condition read", point, m_session.values(point));
}

void Soak::checkValues(const char *how, const Point &point, const QVector<int> &values)
{
    for (int i = 0; i < point.count; ++i) {
        ++m_counts.valuesCompared;
        if (!m_model.allows(point, i, values[i]))
            report({Claim::ReadRight, "%1 brought %2 as %3, which it cannot be"_s
                                          .arg(QLatin1String(how), nameOf(point, i))
                                          .arg(values[i])});
    }
}

void Soak::judge(const MemoryImage &memory)
{
    for (const Finding &finding : m_model.judge(memory))
        report(finding);
    for (const Shown &shown : std::as_const(m_shown)) {
        for (int i = 0; i < shown.point.count; ++i) {
            const Place place = placeOf(shown.point, i);
            const int held = (memory.value(place.word) & place.mask) >> place.shift;
            ++m_counts.valuesCompared;
            if (shown.values[i] != held)
                report({Claim::ReadRight,
                        "%1 is read as %2, the controller holds %3"_s.arg(nameOf(shown.point, i))
                            .arg(shown.values[i])
                            .arg(held)});
        }
    }
}

void Soak::report(const Finding &finding)
{
    if (m_reported.contains(finding.text))
        return;  // a wrong word is seen in every poll
    m_reported.insert(finding.text);
    m_findings.append(finding);
}

QString Soak::nameOf(const Point &point, int index) const
{
    return pointText(m_driver,
                     {point.stationNo, point.regName, point.address + index, 1, point.isBit});
}

}  // namespace host
