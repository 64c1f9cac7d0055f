// What became of the exchanges, per block and per tag.
#pragma once

#include "host/watch/coverage.h"
#include "host/watch/poll_pace.h"

#include <QtCore/QJsonObject>
#include <QtCore/QMap>
#include <QtCore/QTextStream>

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
    /** The tags' names are for the tables. */
    Statistics(const Driver &driver, const QVector<Tag> &tags);

    /** A read of the block ended well. */
    void good(const Point &block, LineTime roundTrip, LineTime now);

    /** A read of the block failed; again: it is sent once more. The reason is one of few words. */
    void fail(const Point &block, const QString &reason, bool again);

    const ExchangeStatistics &all() const { return m_all; }
    const ExchangeStatistics &tag(int index) const { return m_tags[index]; }

    /** Two tables for people: by block, in the order of addresses, and by tag. */
    void print(QTextStream &out, LineTime now) const;

    /** The same as {"blocks":[...],"tags":[...]}; times in milliseconds. */
    QJsonObject object(LineTime now) const;

private:
    template <typename Take>
    void take(const Point &block, const Take &takeIn);

    const Driver &m_driver;
    Coverage m_coverage;
    QVector<Tag> m_list;
    ExchangeStatistics m_all;
    std::map<Point, ExchangeStatistics, RangeOrder> m_blocks;
    QVector<ExchangeStatistics> m_tags;
};

}  // namespace host
