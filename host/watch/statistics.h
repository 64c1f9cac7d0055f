// What became of the exchanges, per block.
#pragma once

#include "host/driver/address.h"
#include "host/line/line.h"

#include <QtCore/QJsonObject>
#include <QtCore/QMap>
#include <QtCore/QTextStream>

#include <map>
#include <optional>

namespace host {

struct ExchangeStatistics
{
    int exchanges = 0;            ///< with a good reply
    int retries = 0;              ///< failed, and sent again
    int givenUp = 0;              ///< failed, and not sent again
    QMap<QString, int> failures;  ///< by reason; their sum is retries + givenUp
    std::optional<LineTime> lastGood;
    LineTime shortest{0};  ///< round trip of the good ones, with mean and longest
    LineTime longest{0};
    LineTime total{0};

    void good(LineTime roundTrip, LineTime now);
    void fail(const QString &reason, bool again);
    LineTime mean() const { return exchanges > 0 ? total / exchanges : LineTime(0); }

    /** "no reply 3, wrong checksum 1", the most frequent first; empty without failures. */
    QString failuresText() const;
};

class Statistics
{
public:
    /** withStation: blocks are named with theirs. The driver stays the caller's. */
    Statistics(const Driver &driver, bool withStation)
        : m_driver(driver), m_withStation(withStation)
    {
    }

    /** A read of the block ended well. */
    void good(const Point &block, LineTime roundTrip, LineTime now);

    /** A read of the block failed; again: it is sent once more. The reason is one of few words. */
    void fail(const Point &block, const QString &reason, bool again);

    const ExchangeStatistics &all() const { return m_all; }
    const ExchangeStatistics &of(const Point &block) const { return m_blocks.at(block); }

    /** A table for people, in the order of addresses. */
    void print(QTextStream &out, LineTime now) const;

    /** The same as {"blocks":[...]}; times in milliseconds. */
    QJsonObject object(LineTime now) const;

private:
    const Driver &m_driver;
    bool m_withStation;
    ExchangeStatistics m_all;
    std::map<Point, ExchangeStatistics, RangeOrder> m_blocks;
};

}  // namespace host
