// Books writes by the kind that travels with their frames.
#include "host/soak/write_ledger.h"

#include <algorithm>

namespace host {

namespace {

QString rangeText(const QString &regName, int address, int count)
{
    return "%1 address number %2 x%3"_s.arg(regName).arg(address).arg(count);
}

}  // namespace

WriteLedger::WriteLedger(MemoryModel &model, std::function<void(const Finding &)> report)
    : m_model(model), m_report(std::move(report))
{
}

int WriteLedger::make(const Point &point, const QVector<int> &values)
{
    const int kind = FirstKind + m_counts.made++;
    m_pending.insert(kind, {point, values});
    return kind;
}

void WriteLedger::end(const Exchange &exchange)
{
    const VARIABLE &item = exchange.frame.var;
    const QString ended = rangeText(item.regName, item.startAddr, item.count);
    const auto found = m_pending.find(item.kind);
    if (found == m_pending.end()) {
        m_report({Claim::Accounted, "a write of %1 ended that was not outstanding"_s.arg(ended)});
        return;
    }
    const Write write = *found;
    const QString made = rangeText(write.point.regName, write.point.address, write.point.count);
    if (ended != made)
        m_report({Claim::Accounted, "a write of %1 ended as one of %2"_s.arg(made, ended)});

    const bool acknowledged = exchange.outcome == Outcome::Good;
    ++(acknowledged ? m_counts.acknowledged : m_counts.givenUp);
    if (!acknowledged && exchange.errorText.isEmpty())
        m_report(
            {Claim::Accounted, "a write of %1 was given up without an error text"_s.arg(made)});
    // Given up while it read the words around its bits, a write has not begun.
    if (exchange.frame.readCount == 0)
        m_model.write(write.point, write.values, acknowledged);

    // The driver serves a range's writes in turn, so the older ones were replaced by this one.
    for (auto older = m_pending.begin(); older.key() != item.kind;) {
        const bool replaced = rangeOf(older->point) == rangeOf(write.point);
        m_counts.replaced += replaced;
        older = replaced ? m_pending.erase(older) : std::next(older);
    }
    m_pending.remove(item.kind);
}

bool WriteLedger::pendingIn(const Point &point) const
{
    return std::any_of(m_pending.cbegin(), m_pending.cend(),
                       [&](const Write &write) { return shareWords(write.point, point); });
}

void WriteLedger::close()
{
    for (const Write &write : std::as_const(m_pending))
        m_report({Claim::Accounted,
                  "a write of %1 was neither acknowledged nor reported as failed"_s.arg(
                      rangeText(write.point.regName, write.point.address, write.point.count))});
}

}  // namespace host
