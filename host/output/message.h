// Texts on their way to a terminal: what files, names and devices bring along does it no harm.
#pragma once

#include <QtCore/QString>

namespace host {

/** The text with control characters, but for ends of lines, written as \x1B. */
QString printable(const QString &text);

/** The text in quotes, as messages name what was wrong: 80 characters at most, else its ends. */
QString quoted(const QString &text);

/** Says it on standard error, the program's name in front. */
void tell(const QString &message);

}  // namespace host
