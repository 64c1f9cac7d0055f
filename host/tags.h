// Tags: what people want read or written. A name, the place in the controller, how its values are
// written, and where the tag was given.
#ifndef TOLVANE_HOST_TAGS_H
#define TOLVANE_HOST_TAGS_H

#include "host/address.h"

namespace host {

/** How values are written. Bit types are always Plain. */
enum class Format {
    Plain,  ///< a word as 0 to 65535, a bit as 0 or 1
    Int16,
    UInt16,
    Int32,
    UInt32,
    Float,
    Hex  ///< a word as 0x0000 to 0xFFFF
};

struct Tag
{
    QString name;  ///< as given, or else the address as written
    Point point;   ///< its count is in words or bits: two words for each 32-bit value
    Format format = Format::Plain;
    QString source;  ///< where it was given, such as "tags.csv:3" or "argument 2"
};

/** A tag as it was given, not judged yet. */
struct TagText
{
    QString name;     ///< may be empty
    QString address;  ///< with the format, if any: "D_W:100x10:float"
    QString source;   ///< as Tag::source
};

/**
 * Collects what is to be read or written: each argument is an address with an optional name before
 * it and an optional format behind it, such as "level=D_W:100x10:float", or the path of a tag file
 * (*.csv: name,address,format; the format may be missing; empty lines, lines starting with # and
 * the header are passed over). Throws Failure (bad input) for files that are no tag files.
 */
QVector<TagText> collectTags(const QStringList &arguments);

/**
 * Reads one address, its count in values, and has the driver check it. Throws Failure (bad input)
 * that names the tag, where it was given, and what is wrong or the range of the type.
 */
Tag parseTag(const Driver &driver, const Identity &identity, const QString &name,
             const QString &address, int stationNo, const QString &source);

/** Collects the tags and reads them all; throws as both do. */
QVector<Tag> parseTags(const Driver &driver, const Identity &identity, const QStringList &arguments,
                       int stationNo);

/** Values of the tag: its words, its bits, or pairs of its words. */
int valueCount(const Tag &tag);

/** The tag's words (0 to 65535) or bits (0 and 1), one text a value; pairs are low word first. */
QStringList formatValues(const Tag &tag, const QVector<int> &units);

/**
 * The other way: "5" or "1,2,3", one value for each of the tag's, as words or bits. Numbers may be
 * written as 0x... where the format has no sign. Throws Failure (bad input) that names the text
 * and what was expected.
 */
QVector<int> parseValues(const Tag &tag, const QString &text);

}  // namespace host

#endif
