// How the rows of a plan's picture share the page: short ones stand side by side.
#pragma once

#include "host/plan/lanes.h"

namespace host {

/** Rows side by side. Positions are in pixels from the top left of the page. */
struct Shelf
{
    struct Place
    {
        Row row;
        double left = 0;         ///< of the row's axis
        bool continued = false;  ///< the row goes on where the row before ended
    };

    QVector<Place> places;
    double labels = 0;  ///< where the labels of tags stand
    double tags = 0;    ///< top of the tags' bars
    double blocks = 0;  ///< top of the blocks
    double axis = 0;
    double bottom = 0;
};

constexpr double PageWidth = 1100;
constexpr double LaneNameWidth = 74;  ///< left of every row
constexpr double TagHeight = 6;
constexpr double BlockHeight = 22;

/** The tag's name, shortened where it is long. */
QString labelText(const Tag &tag);

/** Rough, for nobody knows the fonts of whoever looks at it. */
double textWidth(const QString &text);

QVector<Shelf> layOutPage(const QVector<Block> &blocks, const QVector<Tag> &tags, double top);

}  // namespace host
