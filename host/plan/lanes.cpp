// Cuts the address axis into rows and places blocks, tags and labels on it.
#include "host/plan/lanes.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace host {

namespace {

constexpr int LongestGapDrawn = 8;  // units; longer stretches without a block are cut out
constexpr double BreakWidth = 26;
constexpr double ShortestSegment = 34;  // room for an address below and a number inside
constexpr int ShortPiece = 4;           // units
constexpr double WidestUnit = 30;
constexpr double ThinnestBar = 3;

Span spanOf(const Block &block)
{
    return {block.point.address, block.point.count};
}

bool sameLane(const Block &left, const Block &right)
{
    return left.point.stationNo == right.point.stationNo &&
           left.point.regName == right.point.regName;
}

// The blocks of one lane, cut into rows.
class Lane
{
public:
    Lane(const QVector<Block> &blocks, int first, int end, double width)
        : m_blocks(blocks), m_width(width), m_scale(scaleFor(first, end))
    {
        for (int i = first; i < end; ++i)
            add(i);
    }

    const QVector<Row> &rows() const { return m_rows; }

private:
    static bool joins(const Span &units, const Span &next)
    {
        return next.first - units.end() <= LongestGapDrawn;
    }

    // As wide as the row allows, but never so narrow that a frame's words do not fit into a row.
    double scaleFor(int first, int end) const
    {
        QVector<Span> pieces{spanOf(m_blocks[first])};
        for (int i = first + 1; i < end; ++i) {
            const Span next = spanOf(m_blocks[i]);
            Span &piece = pieces.last();
            if (joins(piece, next))
                piece.count = std::max(piece.end(), next.end()) - piece.first;
            else
                pieces.append(next);
        }
        // Short pieces are drawn wider than their units; the others share what is left.
        double room = m_width - (int(pieces.size()) - 1) * BreakWidth;
        int units = 0;
        for (const Span &piece : std::as_const(pieces)) {
            if (piece.count <= ShortPiece)
                room -= ShortestSegment;
            else
                units += piece.count;
        }
        return std::clamp(room / std::max(1, units), m_width / LongestBlock, WidestUnit);
    }

    Segment segmentOf(const Span &units, double left) const
    {
        return {units, left, std::max(m_scale, ShortestSegment / units.count)};
    }

    bool tryAdd(int index)
    {
        if (m_rows.isEmpty())
            return false;
        Row &row = m_rows.last();
        Segment &last = row.segments.last();
        const Span next = spanOf(m_blocks[index]);
        const bool joined = joins(last.units, next);
        const Span units = joined ? Span{last.units.first,
                                         std::max(last.units.end(), next.end()) - last.units.first}
                                  : next;
        const Segment segment = segmentOf(units, joined ? last.left : last.right() + BreakWidth);
        m_labels += int(m_blocks[index].tags.size());
        if (segment.right() > m_width + 0.5 || m_labels * LabelStep > m_width)
            return false;
        if (joined)
            last = segment;
        else
            row.segments.append(segment);
        return true;
    }

    void add(int index)
    {
        if (!tryAdd(index)) {
            Row row;
            row.lane = m_blocks[index].point;
            row.segments.append(segmentOf(spanOf(m_blocks[index]), 0));
            m_rows.append(row);
            m_labels = int(m_blocks[index].tags.size());
        }
        Bar bar;
        bar.index = index;
        m_rows.last().blocks.append(bar);
    }

    const QVector<Block> &m_blocks;
    double m_width;
    double m_scale;
    int m_labels = 0;  // of the last row
    QVector<Row> m_rows;
};

// Puts every bar on the first level where nothing is in its way. Returns how many levels it takes.
int stack(QVector<Bar> &bars)
{
    QVector<double> ends;
    for (Bar &bar : bars) {
        const auto free = std::find_if(ends.begin(), ends.end(),
                                       [&](double end) { return end <= bar.place.left + 0.01; });
        bar.level = int(free - ends.begin());
        if (free == ends.end())
            ends.append(bar.place.right);
        else
            *free = bar.place.right;
    }
    return int(ends.size());
}

const Segment &segmentAt(const Row &row, const Block &block)
{
    return *std::find_if(row.segments.begin(), row.segments.end() - 1, [&](const Segment &segment) {
        return block.point.address < segment.units.end();
    });
}

void placeTag(Row &row, const Block &block, const Segment &segment, int index, const Point &point)
{
    const Part part = partInside(point, block.point);
    const double scale = unitsPerUnit(point, block.point);
    const double first = (point.address + part.first) / scale;
    const double end = (point.address + part.first + part.count) / scale;
    Bar bar;
    bar.index = index;
    bar.place.left = segment.at(first);
    bar.place.right = std::max(segment.at(end), bar.place.left + ThinnestBar);
    const auto known = std::find_if(row.tags.begin(), row.tags.end(),
                                    [&](const Bar &other) { return other.index == index; });
    if (known == row.tags.end())
        row.tags.append(bar);
    else
        known->place.right = bar.place.right;  // a long tag goes on in the next block
}

// Labels stand above their tags where there is room, else as near as the neighbours allow.
void placeLabels(Row &row, double width)
{
    const int room = int(width / LabelStep) + 1;
    row.tagsUnnamed = std::max(0, int(row.tags.size()) - room);
    const int named = int(row.tags.size()) - row.tagsUnnamed;
    double next = 0;
    for (int i = 0; i < named; ++i) {
        row.tags[i].labelAt = std::max(next, row.tags[i].place.middle());
        next = row.tags[i].labelAt + LabelStep;
    }
    double limit = width;
    for (int i = named - 1; i >= 0; --i) {
        row.tags[i].labelAt = std::min(limit, row.tags[i].labelAt);
        limit = row.tags[i].labelAt - LabelStep;
    }
}

void fill(Row &row, const QVector<Block> &blocks, const QVector<Tag> &tags, double width)
{
    for (Bar &bar : row.blocks) {
        const Block &block = blocks[bar.index];
        const Segment &segment = segmentAt(row, block);
        bar.place.left = segment.at(spanOf(block).first);
        bar.place.right = segment.at(spanOf(block).end());
        for (const Span &gap : block.bridged)
            bar.gaps.append(Extent{segment.at(gap.first), segment.at(gap.end())});
        for (const int index : block.tags)
            placeTag(row, block, segment, index, tags[index].point);
    }
    std::stable_sort(row.tags.begin(), row.tags.end(), [](const Bar &left, const Bar &right) {
        return std::tie(left.place.left, left.place.right) <
               std::tie(right.place.left, right.place.right);
    });
    row.tagLevels = stack(row.tags);
    row.blockLevels = stack(row.blocks);
    placeLabels(row, width);
}

}  // namespace

QVector<Row> layOutLanes(const QVector<Block> &blocks, const QVector<Tag> &tags, double width)
{
    QVector<Row> rows;
    for (int first = 0, end = 0; first < int(blocks.size()); first = end) {
        while (end < int(blocks.size()) && sameLane(blocks[first], blocks[end]))
            ++end;
        rows += Lane(blocks, first, end, width).rows();
    }
    for (Row &row : rows)
        fill(row, blocks, tags, width);
    return rows;
}

}  // namespace host
