// Where everything lies in a plan's picture, from left to right: lanes, the rows that a lane takes,
// the pieces of the axis in a row, tags and blocks.
#pragma once

#include "host/plan/cycle.h"

namespace host {

/** A piece of the axis without a break; positions are in pixels from the row's left end. */
struct Segment
{
    Span units;
    double left = 0;
    double scale = 1;  ///< pixels a unit

    double at(double unit) const { return left + (unit - units.first) * scale; }
    double right() const { return at(units.end()); }
};

struct Extent
{
    double left = 0;
    double right = 0;

    double width() const { return right - left; }
    double middle() const { return (left + right) / 2; }
};

/** A tag or block; bars that would overlap lie on different levels. */
struct Bar
{
    int index = 0;  ///< of the tag or block
    Extent place;
    int level = 0;
    double labelAt = 0;    ///< of a tag
    QVector<Extent> gaps;  ///< bridged parts of a block, from left to right
};

struct Row
{
    Point lane;  ///< station and register type
    QVector<Segment> segments;
    QVector<Bar> blocks;
    QVector<Bar> tags;    ///< from left to right, as are their labels
    int tagsUnnamed = 0;  ///< the last ones of `tags`: there is no room for their labels
    int tagLevels = 0;
    int blockLevels = 0;
};

constexpr double LabelStep = 13;  ///< pixels between neighbouring labels of tags

/** Lays the blocks, which are in the order of addresses, out in rows of so many pixels. */
QVector<Row> layOutLanes(const QVector<Block> &blocks, const QVector<Tag> &tags, double width);

}  // namespace host
