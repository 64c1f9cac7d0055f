// Puts rows on shelves.
#include "host/plan/page.h"

#include <algorithm>

namespace host {

namespace {

constexpr double Margin = 16;
constexpr double PlotWidth = 920;  // what is right of it, slanted labels lean into
constexpr double LeaderHeight = 12;
constexpr double AxisHeight = 20;
constexpr double ShelfSpacing = 22;
constexpr double RowSpacing = 30;
constexpr double CharacterWidth = 6.4;
constexpr double Sine = 0.87;  // of the labels' slant of 60 degrees
constexpr double Cosine = 0.5;
constexpr int LongestLabel = 24;

// How far the row reaches to the right, slanted labels included.
double reachOf(const Row &row, const QVector<Tag> &tags)
{
    double reach = row.segments.last().right();
    for (const Bar &bar : row.tags)
        reach = std::max(reach, bar.labelAt + Cosine * textWidth(labelText(tags[bar.index])));
    return reach;
}

double labelHeight(const Shelf &shelf, const QVector<Tag> &tags)
{
    double height = 0;
    for (const Shelf::Place &place : shelf.places)
        for (const Bar &bar : place.row.tags)
            height = std::max(height, Sine * textWidth(labelText(tags[bar.index])));
    return height + 10;
}

void setHeights(Shelf &shelf, const QVector<Tag> &tags, double top)
{
    int tagLevels = 0;
    int blockLevels = 0;
    for (const Shelf::Place &place : std::as_const(shelf.places)) {
        tagLevels = std::max(tagLevels, place.row.tagLevels);
        blockLevels = std::max(blockLevels, place.row.blockLevels);
    }
    shelf.labels = top + labelHeight(shelf, tags);
    shelf.tags = shelf.labels + LeaderHeight;
    shelf.blocks = shelf.tags + tagLevels * TagHeight + 4;
    shelf.axis = shelf.blocks + blockLevels * BlockHeight + 3;
    shelf.bottom = shelf.axis + AxisHeight + ShelfSpacing;
}

bool sameLane(const Row &left, const Row &right)
{
    return left.lane.stationNo == right.lane.stationNo && left.lane.regName == right.lane.regName;
}

}  // namespace

QString labelText(const Tag &tag)
{
    return tag.name.size() <= LongestLabel ? tag.name
                                           : tag.name.left(LongestLabel - 1) + QChar(0x2026);
}

double textWidth(const QString &text)
{
    return CharacterWidth * static_cast<double>(text.size());
}

QVector<Shelf> layOutPage(const QVector<Block> &blocks, const QVector<Tag> &tags, double top)
{
    constexpr double First = Margin + LaneNameWidth;
    QVector<Shelf> shelves;
    const QVector<Row> rows = layOutLanes(blocks, tags, PlotWidth);
    double reach = 0;
    for (int i = 0; i < int(rows.size()); ++i) {
        const Row &row = rows[i];
        double left = reach + RowSpacing + LaneNameWidth;
        if (i == 0 || left + row.segments.last().right() > First + PlotWidth) {
            shelves.append(Shelf());
            left = First;
        }
        shelves.last().places.append(Shelf::Place{row, left, i > 0 && sameLane(rows[i - 1], row)});
        reach = left + reachOf(row, tags);
    }
    for (Shelf &shelf : shelves) {
        setHeights(shelf, tags, top);
        top = shelf.bottom;
    }
    return shelves;
}

}  // namespace host
