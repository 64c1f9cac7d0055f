// Tags: what people want read or written. A name, the place in the controller, how its values are
// written, and where the tag was given.
#pragma once

#include "host/driver/address.h"
#include "host/tags/format.h"

namespace host {

struct Tag
{
    QString name;               ///< as given, or else the address as written
    Point point;                ///< its count is in words or bits: two words for each 32-bit value
    Form form;                  ///< of each value
    QString unit;               ///< what numbers measure, such as "bar"; may be empty
    bool stationNamed = false;  ///< the station was given with the address
};

/** A tag as it was given, not judged yet. */
struct TagText
{
    QString name;     ///< may be empty
    QString address;  ///< with station and format, if any: "2/D_W:100x10:float"
    QString source;   ///< where it was given, such as "tags.csv:3" or "argument 2"
    QString twin{};   ///< the source of another tag with its name; empty where there is none
    Form scaling{};   ///< scale, offset and decimals
    QString unit{};
};

/**
 * Collects what is to be read or written: each argument is an address with an optional name before
 * it, station in front and format behind, such as "level=2/D_W:100x10:float", or the path of a tag
 * file (*.csv; tagFiles may be called otherwise).
 *
 * A first line of a tag file that names columns (name, address, format, scale, offset, unit,
 * decimals, comment, station, in any order, address at least) says what is where; without one they
 * are name, address, format. Separators are commas, or semicolons, as some spreadsheets write it
 * (with decimal commas); fields may be quoted and empty ones may follow; empty lines and lines
 * starting with # are passed over. Throws Failure (bad input) that names file and line.
 */
QVector<TagText> collectTags(const QStringList &arguments,
                             const QStringList &tagFiles = QStringList());

/**
 * Reads one address, its count in values, and has the driver check it. Throws Failure (bad input)
 * that names the tag, where it was given, and what is wrong or the range of the type.
 */
Tag parseTag(const Driver &driver, const TagText &text);

/** Collects the tags and reads them all; throws as both do. */
QVector<Tag> parseTags(const Driver &driver, const QStringList &arguments,
                       const QStringList &tagFiles = QStringList());

/** Whether one of the tags was given with its station: then blocks are named with theirs, too. */
bool namesStations(const QVector<Tag> &tags);

/** Values of the tag: its words, its bits, or runs of its words. */
int valueCount(const Tag &tag);

/** The tag's words (0 to 65535) or bits (0 and 1), one text a value. */
QStringList formatValues(const Tag &tag, const QVector<int> &units);

/**
 * The other way: one value for each of the tag's, as words or bits; numbers as the controller holds
 * them, for a tag with a scale is not written. Throws Failure (bad input) that names the text and
 * what was expected.
 */
QVector<int> parseValues(const Tag &tag, const QStringList &values);

}  // namespace host
