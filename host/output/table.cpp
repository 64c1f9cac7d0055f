// Pads cells.
#include "host/output/table.h"

#include <algorithm>

namespace host {

QStringList Table::lines() const
{
    QVector<int> widths;
    for (int i = 0; i < int(m_columns.size()); ++i) {
        int width = m_columns[i].leastWidth;
        for (const QStringList &row : m_rows)
            width = std::max(width, int(row.value(i).size()));
        widths.append(width);
    }
    QStringList lines;
    for (const QStringList &row : m_rows) {
        QString line;
        for (int i = 0; i < int(row.size()); ++i) {
            const Column &column = m_columns[i];
            line += QString(column.gap, QLatin1Char(' ')) +
                    (column.side == Left ? row[i].leftJustified(widths[i])
                                         : row[i].rightJustified(widths[i]));
        }
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        lines.append(line);
    }
    return lines;
}

void Table::print(QTextStream &out) const
{
    for (const QString &line : lines())
        out << line << '\n';
}

}  // namespace host
