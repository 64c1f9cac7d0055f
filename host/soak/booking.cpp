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
        m_recipe->failed = m_recipe->failed || givenUp;
        bookRecipe(false);
        m_inFlight = false;  // looked at between transfers only
        return;
    }

    const bool serveWrite = exchange.frame.var.kind >= FirstWriteKind;
    const bool firstOfTwo = serveWrite && reads;
    m_inFlight = !givenUp && !(good && !firstOfTwo);
    if (serveWrite) {
        if (!m_inFlight)
            endWrite(exchange);
    } else if (exchange.frame.var.kind == Session::CyclicReadKind) {
        m_polls += good;
    } else if (givenUp && m_conditionRead) {
        // The end is announced only where the last part of the read fails.
        conditionReadEnded(false);
    }
}

void Soak::endWrite(const Exchange &exchange)
{
    const VARIABLE &item = exchange.frame.var;
    const QString ended = rangeText({item.stationNo, item.regName, item.startAddr, item.count});
    if (!m_writes.contains(item.kind))
        return report(Claim::Accounted,
                      "a write of %1 ended that was not outstanding"_s.arg(ended));
    const Shown write = m_writes[item.kind];
    const QString made = rangeText(write.point);
    if (ended != made)
        report(Claim::Accounted, "a write of %1 ended as one of %2"_s.arg(made, ended));

    const bool acknowledged = exchange.outcome == Outcome::Good;
    ++(acknowledged ? m_counts.writesAcknowledged : m_counts.writesGivenUp);
    if (!acknowledged && exchange.errorText.isEmpty())
        report(Claim::Accounted, "a write of %1 was given up without an error text"_s.arg(made));
    // Given up while it read the words around its bits, a write has not begun.
    if (exchange.frame.readCount == 0)
        report(m_book.write(write.point, write.values, acknowledged));

    // The driver serves a range's writes in turn, so the older ones were replaced by this one.
    for (auto older = m_writes.begin(); older.key() != item.kind;) {
        const bool replaced = rangeOf(older->point) == rangeOf(write.point);
        m_counts.writesReplaced += replaced;
        older = replaced ? m_writes.erase(older) : std::next(older);
    }
    m_writes.remove(item.kind);
}

bool Soak::isWriting(const Point &point) const
{
    return std::any_of(m_writes.cbegin(), m_writes.cend(),
                       [&](const Shown &write) { return shareWords(write.point, point); });
}

void Soak::bookRecipe(bool acknowledged)
{
    for (const Shown &entry : std::as_const(m_recipe->entries))
        if (m_recipe->written)
            report(m_book.write(entry.point, entry.values, acknowledged));
}

// The words as they came over the line, whatever the driver makes of them.
void Soak::checkReply(const Exchange &exchange)
{
    const VARIABLE &item = exchange.frame.var;
    const RegisterType *type = m_driver.identity.type(item.regName);
    if (!type)
        return report(Claim::ReadRight, "a read of the unknown type \"%1\""_s.arg(item.regName));
    Place place = placeOf({item.stationNo, item.regName, item.startAddr, 1, type->isBit}, 0);
    for (const int value : readReply(exchange.reply, exchange.request(), 0).words) {
        ++m_counts.wordsCompared;
        if (const auto finding = m_book.judge(place.device, place.word++, value))
            report(finding->claim, finding->text);
    }
}

void Soak::checkRecipe(const QVector<int> &firstUnits)
{
    ++(m_recipe->written ? m_counts.recipesWritten : m_counts.recipesRead);
    if (m_session.recipeBusy())
        return report(Claim::Accounted, "a recipe transfer does not end"_s);
    if (m_recipe->failed) {
        ++m_counts.recipesFailed;
        return;
    }
    bookRecipe(true);
    for (int entry = 0; entry < m_recipe->entries.size() && !m_recipe->written; ++entry) {
        const Point &point = m_recipe->entries[entry].point;
        QVector<int> values;
        for (int i = 0; i < point.count; ++i)
            values.append(m_session.recipeUnit(firstUnits[entry] + i));
        checkValues("a recipe", point, values);
    }
}

void Soak::conditionReadEnded(bool done)
{
    if (!m_conditionRead)
        return report(Claim::Accounted, "a condition read ended twice"_s);
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
        if (values[i] != m_book.expected(point, i))
            report(Claim::ReadRight, "%1 brought %2 as %3, which it cannot be"_s
                                         .arg(QLatin1String(how), nameOf(point, i))
                                         .arg(values[i]));
    }
}

void Soak::judge()
{
    settle();
    report(m_book.judge());
    for (const Shown &shown : std::as_const(m_shown)) {
        for (int i = 0; i < shown.point.count; ++i) {
            const int held = m_book.held(shown.point, i);
            ++m_counts.valuesCompared;
            if (shown.values[i] != held)
                report(Claim::ReadRight,
                       "%1 is read as %2, the controller holds %3"_s.arg(nameOf(shown.point, i))
                           .arg(shown.values[i])
                           .arg(held));
        }
    }
}

void Soak::report(Claim claim, const QString &text)
{
    if (m_reported.contains(text))
        return;  // a wrong word is seen in every poll
    m_reported.insert(text);
    m_findings.append({claim, text});
}

void Soak::report(const QVector<Finding> &findings)
{
    for (const Finding &finding : findings)
        report(finding.claim, finding.text);
}

QString Soak::rangeText(const Point &point)
{
    return "%1 address number %2 x%3"_s.arg(point.regName).arg(point.address).arg(point.count);
}

QString Soak::nameOf(const Point &point, int index) const
{
    return pointText(m_driver,
                     {point.stationNo, point.regName, point.address + index, 1, point.isBit});
}

}  // namespace host
