// Texts laid out for a terminal: columns, and counts with their nouns.
#pragma once

#include "plc/literals.h"

#include <QtCore/QStringList>
#include <QtCore/QTextStream>
#include <QtCore/QVector>

namespace host {

/** "1 word", "2 words". */
inline QString countText(qint64 count, const char *noun)
{
    return "%1 %2%3"_s.arg(count).arg(QLatin1String(noun), QLatin1String(count == 1 ? "" : "s"));
}

/** Rows of cells under each other, as wide as the widest of their column. */
class Table
{
public:
    enum Side { Left, Right };

    struct Column
    {
        Side side = Left;
        int leastWidth = 0;
        int gap = 2;  ///< blanks before it; of the first column an indent
    };

    explicit Table(const QVector<Column> &columns) : m_columns(columns) {}

    /** Adds a row; cells that are missing at its end are empty. */
    void add(const QStringList &cells) { m_rows.append(cells); }

    /** The rows, none with blanks at its end. */
    QStringList lines() const;

    void print(QTextStream &out) const;

private:
    QVector<Column> m_columns;
    QVector<QStringList> m_rows;
};

}  // namespace host
