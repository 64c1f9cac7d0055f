// Has the driver offer the requests of one cycle.
#include "host/plan/cycle.h"

#include "host/frames/frame_text.h"
#include "host/output/failure.h"

#include <QtCore/QHash>

#include <algorithm>
#include <numeric>

namespace host {

namespace {

CycleCosts costsOf(CycleCosts costs, const LineCosts &line)
{
    costs.wireTime = line.wireTime(costs.bytes);
    costs.time = costs.wireTime + costs.requests * line.turnaround;
    return costs;
}

QString laneOf(const Point &point)
{
    return "%1/%2"_s.arg(point.stationNo).arg(memoryArea(point.regName));
}

// The blocks of one memory area of one station by their addresses, with how far any block up to
// each of them reaches: blocks may overlap.
struct Lane
{
    QVector<int> blocks;
    QVector<int> reach;
};

QHash<QString, Lane> lanesOf(const QVector<Block> &blocks)
{
    QHash<QString, Lane> lanes;
    QVector<int> order(blocks.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int left, int right) {
        return blocks[left].point.address < blocks[right].point.address;
    });
    for (const int index : std::as_const(order)) {
        const Point &point = blocks[index].point;
        Lane &lane = lanes[laneOf(point)];
        const int end = point.address + point.count;
        lane.reach.append(lane.reach.isEmpty() ? end : std::max(end, lane.reach.last()));
        lane.blocks.append(index);
    }
    return lanes;
}

Block nextBlock(const Driver &driver, const Identity &identity)
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

    const RegisterType *type = identity.type(frame.var.regName);
    Block block;
    block.point.stationNo = frame.var.stationNo;
    block.point.regName = frame.var.regName;
    block.point.address = frame.var.startAddr;
    block.point.count = frame.var.count;
    block.point.isBit = type && type->isBit;
    block.words = frame.readCount;
    block.requestBytes = frame.sendLen;
    block.replyBytes = frame.replyLen;
    return block;
}

}  // namespace

int Block::bridgedCount() const
{
    int count = 0;
    for (const Span &span : bridged)
        count += span.count;
    return count;
}

CycleCosts costsOf(const QVector<Block> &blocks, const LineCosts &line)
{
    CycleCosts costs;
    costs.requests = int(blocks.size());
    for (const Block &block : blocks)
        costs.bytes += block.bytes();
    return costsOf(costs, line);
}

Span unitsOf(const Block &block, const Point &point)
{
    const Part part = partInside(point, block.point);
    if (part.count == 0)
        return {};
    const int scale = unitsPerUnit(point, block.point);
    const int first = (point.address + part.first) / scale;
    return {first, (point.address + part.first + part.count - 1) / scale + 1 - first};
}

QVector<Block> walkCycle(const Driver &driver, Session &session, const Identity &identity,
                         const QVector<Point> &points)
{
    QVector<Block> blocks;
    const int requests = session.monitor(points);
    for (int i = 0; i < requests; ++i)
        blocks.append(nextBlock(driver, identity));
    return blocks;
}

CycleCosts costsOneByOne(const Driver &driver, Session &session, const Identity &identity,
                         const QVector<Point> &points, const LineCosts &line)
{
    // What a point costs depends on its type and extent, not on where it lies.
    QHash<QString, CycleCosts> known;
    CycleCosts all;
    for (const Point &point : points) {
        const QString extent = "%1 %2 %3"_s.arg(point.regName)
                                   .arg(point.count)
                                   .arg(point.isBit ? point.address % BitsPerWord : 0);
        auto costs = known.constFind(extent);
        if (costs == known.constEnd()) {
            session.restart();
            costs =
                known.insert(extent, costsOf(walkCycle(driver, session, identity, {point}), line));
        }
        all.requests += costs->requests;
        all.bytes += costs->bytes;
    }
    return costsOf(all, line);
}

BlockLimit bestBlockLimit(const Driver &driver, Session &session, const Identity &identity,
                          const QVector<Point> &points, const LineCosts &line, BlockLimit best)
{
    for (int words = 1; words <= LongestBlock; ++words) {
        SessionSettings settings;
        settings.blockLimit = words;
        session.restart(settings);
        const CycleCosts costs = costsOf(walkCycle(driver, session, identity, points), line);
        if (costs.time < best.costs.time)
            best = BlockLimit{words, costs};
    }
    return best;
}

void assignTags(QVector<Block> &blocks, const QVector<Tag> &tags)
{
    const QHash<QString, Lane> lanes = lanesOf(blocks);
    QVector<QVector<Span>> covered(blocks.size());
    for (int tag = 0; tag < int(tags.size()); ++tag) {
        const Lane lane = lanes.value(laneOf(tags[tag].point));
        const int perUnit =
            lane.blocks.isEmpty() ? 1 : unitsPerUnit(tags[tag].point, blocks[lane.blocks[0]].point);
        const int first = tags[tag].point.address / perUnit;
        int at =
            int(std::upper_bound(lane.reach.begin(), lane.reach.end(), first) - lane.reach.begin());
        for (; at < int(lane.blocks.size()); ++at) {
            Block &block = blocks[lane.blocks[at]];
            const Span span = unitsOf(block, tags[tag].point);
            if (span.count > 0) {
                block.tags.append(tag);
                covered[lane.blocks[at]].append(span);
            } else if (block.point.address > first) {
                break;
            }
        }
    }
    for (int i = 0; i < int(blocks.size()); ++i) {
        Block &block = blocks[i];
        std::sort(covered[i].begin(), covered[i].end(),
                  [](const Span &left, const Span &right) { return left.first < right.first; });
        int reached = block.point.address;
        for (const Span &span : std::as_const(covered[i])) {
            if (span.first > reached)
                block.bridged.append(Span{reached, span.first - reached});
            reached = std::max(reached, span.end());
        }
    }
}

}  // namespace host
