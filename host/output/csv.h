// Lines of CSV files: fields with separators between, quoted where they hold one.
#pragma once

#include <QtCore/QStringList>

namespace host {

/**
 * The fields of one line, without the blanks around them and the quotes; "" inside quotes is one
 * quote. ok is false when a quote is not closed, or text stands behind a closed one.
 */
QStringList csvFields(const QString &line, QChar separator, bool *ok);

/** The text as one field: in quotes when it holds a separator, a quote or outer blanks. */
QString csvField(QString text);

/** ';' for a line that holds one outside quotes, as some spreadsheets write it, else ','. */
QChar csvSeparator(const QString &line);

/**
 * A text file's lines, without a byte order mark and the blanks around them. Throws Failure (bad
 * input) that names the kind of file, such as "tag file", when it cannot be read.
 */
QStringList readLines(const QString &path, const QString &kind);

}  // namespace host
