// Recipe files: CSV, each line an address and, behind it, its values.
#ifndef TOLVANE_HOST_RECIPE_FILE_H
#define TOLVANE_HOST_RECIPE_FILE_H

#include "host/tags.h"

namespace host {

struct RecipeLine
{
    Tag tag;
    QString address;  ///< as written, with the format
    QString values;   ///< with commas between; empty where the file has none
};

/**
 * Reads lines such as "D_W:100x3:int16,1,-2,3"; empty lines, lines starting with # and the header
 * "address,values" are passed over. Throws Failure (bad input) that names the file's line and what
 * is wrong with it.
 */
QVector<RecipeLine> readRecipeFile(const Driver &driver, const Identity &identity,
                                   const QString &path, int stationNo);

/** Writes the lines in the same form; "-" is standard output. Throws Failure. */
void writeRecipeFile(const QString &path, const QVector<RecipeLine> &lines);

}  // namespace host

#endif
