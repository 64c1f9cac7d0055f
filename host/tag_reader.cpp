// Polls the tags for one cycle.
#include "host/tag_reader.h"

#include "host/failure.h"

#include <QtCore/QDeadlineTimer>

namespace host {

namespace {

constexpr std::chrono::seconds LostLinePatience(10);

Point blockOf(const VARIABLE &item)
{
    Point block;
    block.stationNo = item.stationNo;
    block.regName = item.regName;
    block.address = item.startAddr;
    block.count = item.count;
    return block;
}

}  // namespace

QVector<TagReading> readTags(Connection &connection, const QVector<Tag> &tags,
                             const std::function<void(int, int, int)> &progress)
{
    QVector<Point> points;
    int allUnits = 0;
    for (const Tag &tag : tags) {
        points.append(tag.point);
        allUnits += tag.point.count;
    }
    Session &session = connection.session();
    QVector<TagReading> readings(tags.size());
    int left = session.monitor(points);
    int blocks = 0;
    int units = 0;
    connection.observer = [&](const Exchange &exchange) {
        if (exchange.outcome != Outcome::Good && exchange.outcome != Outcome::GivenUp)
            return;
        --left;
        ++blocks;
        const Point block = blockOf(exchange.frame.var);
        for (int i = 0; i < int(tags.size()); ++i) {
            const int count = partInside(tags[i].point, block).count;
            units += count;
            if (count > 0 && exchange.outcome == Outcome::GivenUp)
                readings[i].error = faultsText(exchange.tries);
        }
        if (progress)
            progress(blocks, units, allUnits);
    };
    QDeadlineTimer patience(LostLinePatience);
    while (left > 0 && !patience.hasExpired())
        if (connection.step() != Outcome::LineLost)
            patience = QDeadlineTimer(LostLinePatience);
    connection.observer = nullptr;
    for (int i = 0; i < int(tags.size()); ++i)
        readings[i].units = session.values(tags[i].point);
    session.monitor({});
    if (left > 0)
        throw Failure(QStringLiteral("the line did not come back"));
    return readings;
}

}  // namespace host
