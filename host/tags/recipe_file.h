// Recipe files: CSV, each line an address and, behind it, its values.
#pragma once

#include "host/tags/tags.h"

namespace host {

struct RecipeRow
{
    Tag tag;
    QString address;        ///< as written, with the format
    QStringList values{};   ///< one text each; empty where the file has none
    QChar separator = ',';  ///< with ';' numbers may have decimal commas
    int line = 0;           ///< its place in the file
};

/** A file with all that stands in it: what is not read anew stays as it is. */
struct Recipe
{
    QStringList lines;
    QVector<RecipeRow> rows;

    /** The place of the row with this address; a new one at the end where there is none. */
    int rowOf(const Tag &tag, const QString &address);

    /** Puts these words or bits of its tag into a row. */
    void setValues(int row, const QVector<int> &units);

    QVector<Tag> tags() const;
};

/**
 * Reads lines such as "D_W:100x3:int16,1,-2,3" or "2/D_W:100:float;1,5"; empty lines, lines
 * starting with # and the header "address,values" are no rows. Throws Failure (bad input) that
 * names the file's line and what is wrong with it, such as another kind of header.
 */
Recipe readRecipeFile(const Driver &driver, const QString &path);

/** Writes the lines; "-" is standard output. Throws Failure. */
void writeRecipeFile(const QString &path, const Recipe &recipe);

}  // namespace host
