// Has the driver offer the requests of one cycle.
#include "host/plan/cycle.h"

#include "host/frames/frame_text.h"
#include "host/output/failure.h"

#include <QtCore/QHash>

#include <algorithm>

namespace host {

namespace {

constexpr int HighestBlockLimit = 127;

Block nextBlock(const Driver &driver)
{
    FRAME_PRO frame;
    if (driver.getSendFrame(&frame) != 1)
        throw Failure("the driver has fewer requests than it planned"_s);
    const QByteArray request(reinterpret_cast<const char *>(frame.frame), frame.sendLen);
    const QByteArray reply = blankReply(request);
    QString errorText;
    if (reply.size() != frame.replyLen || driver.dealRcvFrame(reply, &errorText) != 1)
        throw Failure(
            "the driver expects another reply to \"%1\""_s.arg(readRequest(request).text));

    return {blockOf(frame.var), frame.sendLen, frame.replyLen, {}, {}};
}

QVector<Block> walkCycle(const Driver &driver, Session &session, const QVector<Point> &points)
{
    QVector<Block> blocks;
    const int requests = session.monitor(points);
    for (int i = 0; i < requests; ++i)
        blocks.append(nextBlock(driver));
    return blocks;
}

QString areaOf(const Point &point)
{
    return "%1/%2"_s.arg(point.stationNo).arg(memoryArea(point.regName));
}

void assignTags(QVector<Block> &blocks, const QVector<Tag> &tags)
{
    QHash<QString, QVector<int>> tagsOfArea;
    for (int tag = 0; tag < int(tags.size()); ++tag)
        tagsOfArea[areaOf(tags[tag].point)].append(tag);
    for (Block &block : blocks) {
        block.used.fill(false, block.point.count);
        const QVector<int> candidates = tagsOfArea.value(areaOf(block.point));
        for (const int tag : candidates) {
            const Point &point = tags[tag].point;
            const int scale = unitsPerUnit(point, block.point);
            const Part part = partInside(point, block.point);
            const int first = point.address + part.first - block.point.address * scale;
            if (part.count == 0)
                continue;
            block.tags.append(tag);
            std::fill(block.used.begin() + first / scale,
                      block.used.begin() + (first + part.count - 1) / scale + 1, true);
        }
    }
}

}  // namespace

Costs costsOf(const QVector<Block> &blocks)
{
    Costs costs;
    costs.requests = int(blocks.size());
    for (const Block &block : blocks)
        costs.bytes += block.requestBytes + block.replyBytes;
    return costs;
}

Plan planCycle(const Driver &driver, const QVector<Tag> &tags, const PlannedLine &line,
               int blockLimit, bool findBest)
{
    Plan plan;
    plan.tags = tags;
    plan.line = line;
    plan.blockLimit = blockLimit;
    QVector<Point> points;
    for (const Tag &tag : tags)
        points.append(tag.point);

    SessionSettings settings;
    settings.blockLimit = blockLimit;
    Session session(driver, settings);
    plan.blocks = walkCycle(driver, session, points);
    plan.costs = costsOf(plan.blocks);
    assignTags(plan.blocks, tags);

    for (const Point &point : std::as_const(points)) {
        const Costs costs = costsOf(walkCycle(driver, session, {point}));
        plan.oneByOne.requests += costs.requests;
        plan.oneByOne.bytes += costs.bytes;
    }
    if (!findBest)
        return plan;
    plan.bestLimit = blockLimit;
    plan.best = plan.costs;
    for (settings.blockLimit = 1; settings.blockLimit <= HighestBlockLimit; ++settings.blockLimit) {
        session.restart(settings);
        const Costs costs = costsOf(walkCycle(driver, session, points));
        if (line.time(costs) < line.time(plan.best)) {
            plan.bestLimit = settings.blockLimit;
            plan.best = costs;
        }
    }
    return plan;
}

}  // namespace host
