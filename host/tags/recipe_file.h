// Recipe files: CSV, each line an address and, behind it, its values.
#pragma once

#include "host/tags/tags.h"

namespace host {

struct RecipeLine
{
    Tag tag;
    QString address;       ///< as written, with the format
    QString values;        ///< with commas between; empty where the file has none
    QStringList before{};  ///< comments, header and empty lines above it
    QStringList after{};   ///< of the last line: what stands below it
};

/**
 * Reads lines such as "D_W:100x3:int16,1,-2,3" or "2/D_W:100;1"; empty lines, lines starting with #
 * and the header "address,values" are kept beside them. Throws Failure (bad input) that names the
 * file's line and what is wrong with it.
 */
QVector<RecipeLine> readRecipeFile(const Driver &driver, const Identity &identity,
                                   const QString &path, int stationNo);

/** Writes the lines in the same form, comments included; "-" is standard output. Throws Failure. */
void writeRecipeFile(const QString &path, const QVector<RecipeLine> &lines);

}  // namespace host
