// Lines of CSV files: fields with separators between, quoted where they hold one, and none that a
// spreadsheet would run as a formula.
#pragma once

#include <QtCore/QStringList>

namespace host {

/**
 * The fields of one line, without the blanks around them and the quotes; "" inside quotes is one
 * quote. An apostrophe that keeps a text from being a formula is left out. Throws Failure (bad
 * input) that names the place when a quote is not closed, or text stands behind a closed one;
 * `what` is what people call such a field.
 */
QStringList csvFields(const QString &line, QChar separator, const QString &place,
                      const char *what = "field");

/**
 * The text as one field: in quotes when it holds a separator, a quote or outer blanks, and behind
 * an apostrophe when it begins like a formula, with = + - or @, and is no number.
 */
QString csvField(QString text);

/** ';' for a line that holds one outside quotes, as some spreadsheets write it, else ','. */
QChar csvSeparator(const QString &line);

}  // namespace host
