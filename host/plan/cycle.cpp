// Has the driver offer the requests of one cycle.
#include "host/plan/cycle.h"

#include "host/failure.h"
#include "host/frame_text.h"

#include <algorithm>

namespace host {

namespace {

constexpr int BitsPerWord = 16;

// Types that end in _bit lie in the words of their letter.
QString memoryArea(const QString &regName)
{
    return regName.section(QLatin1Char('_'), 0, 0);
}

Block nextBlock(const Driver &driver, const Identity &identity)
{
    FRAME_PRO frame;
    if (driver.getSendFrame(&frame) != 1)
        throw Failure(QStringLiteral("the driver has fewer requests than it planned"));
    const QByteArray request(reinterpret_cast<const char *>(frame.frame), frame.sendLen);
    const QByteArray reply = blankReply(request);
    QString errorText;
    if (reply.size() != frame.replyLen || driver.dealRcvFrame(reply, &errorText) != 1)
        throw Failure(QStringLiteral("the driver expects another reply to \"%1\"")
                          .arg(readRequest(request).text));

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
    costs.wireTime = line.wireTime(costs.bytes);
    costs.time = costs.wireTime + costs.requests * line.turnaround;
    return costs;
}

Span unitsOf(const Block &block, const Point &point)
{
    if (point.stationNo != block.point.stationNo ||
        memoryArea(point.regName) != memoryArea(block.point.regName))
        return {};
    const bool inWords = point.isBit && !block.point.isBit;
    const int perUnit = inWords ? BitsPerWord : 1;
    const int first = point.address / perUnit;
    const int end = (point.address + point.count - 1) / perUnit + 1;
    const int from = std::max(first, block.point.address);
    const int to = std::min(end, block.point.address + block.point.count);
    return from < to ? Span{from, to - from} : Span();
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
    QVector<Block> blocks;
    for (const Point &point : points)
        blocks += walkCycle(driver, session, identity, {point});
    return costsOf(blocks, line);
}

BlockLimit bestBlockLimit(const Driver &driver, Session &session, const Identity &identity,
                          const QVector<Point> &points, const LineCosts &line)
{
    BlockLimit best;
    for (int words = 1; words <= LongestBlock; ++words) {
        SessionSettings settings;
        settings.blockLimit = words;
        session.restart(settings);
        const CycleCosts costs = costsOf(walkCycle(driver, session, identity, points), line);
        if (best.words == 0 || costs.time < best.costs.time)
            best = BlockLimit{words, costs};
    }
    return best;
}

void assignTags(QVector<Block> &blocks, const QVector<Tag> &tags)
{
    for (Block &block : blocks) {
        QVector<Span> covered;
        for (int i = 0; i < int(tags.size()); ++i) {
            const Span span = unitsOf(block, tags[i].point);
            if (span.count == 0)
                continue;
            block.tags.append(i);
            covered.append(span);
        }
        std::sort(covered.begin(), covered.end(),
                  [](const Span &left, const Span &right) { return left.first < right.first; });
        int reached = block.point.address;
        for (const Span &span : std::as_const(covered)) {
            if (span.first > reached)
                block.bridged.append(Span{reached, span.first - reached});
            reached = std::max(reached, span.end());
        }
    }
}

}  // namespace host
