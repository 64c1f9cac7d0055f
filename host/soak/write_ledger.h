// The writes that were handed to the driver, and what became of each.
#pragma once

#include "host/exchange/loop.h"
#include "host/soak/memory_model.h"

#include <functional>

namespace host {

class WriteLedger
{
public:
    struct Counts
    {
        int made = 0;
        int acknowledged = 0;
        int givenUp = 0;
        int replaced = 0;  ///< by a newer write of the same range, while they waited
    };

    /** Enters in the model what the controller acknowledges, and reports what does not balance. */
    WriteLedger(MemoryModel &model, std::function<void(const Finding &)> report);

    /** Enters a write; returns the kind that its frames must carry. */
    int make(const Point &point, const QVector<int> &values);

    /** True when the frame serves a write of the ledger. */
    static bool serves(const FRAME_PRO &frame) { return frame.var.kind >= FirstKind; }

    /** Books the end of a write: its last frame acknowledged, or any of its frames given up. */
    void end(const Exchange &exchange);

    /** Writes without an end, at this time. */
    int pending() const { return int(m_pending.size()); }
    bool pendingIn(const Point &point) const;

    /** Reports the writes that have no end. */
    void close();

    const Counts &counts() const { return m_counts; }

private:
    enum { FirstKind = 1000 };  // smaller ones have meanings of their own

    struct Write
    {
        Point point;
        QVector<int> values;
    };

    MemoryModel &m_model;
    std::function<void(const Finding &)> m_report;
    QMap<int, Write> m_pending;  // by kind, oldest first
    Counts m_counts;
};

}  // namespace host
