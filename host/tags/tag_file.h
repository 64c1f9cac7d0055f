// Tag files: CSV with a line for each tag.
#pragma once

#include "host/tags/tags.h"

namespace host {

/**
 * Reads the tags of a file. A first line that names columns (name, address, format, scale, offset,
 * unit, decimals, comment, station, in any order, address at least) says what is where; without one
 * they are name, address, format. Separators are commas, or semicolons, as some spreadsheets write
 * it (with decimal commas); fields may be quoted and empty ones may follow; empty lines and lines
 * starting with # are passed over. Throws Failure (bad input) that names file and line.
 */
QVector<TagText> readTagFile(const QString &path);

}  // namespace host
