// Text files that people wrote.
#pragma once

#include <QtCore/QStringList>

namespace host {

/**
 * The file's lines, without a byte order mark and the blanks around them; "-" is standard input.
 * The last one is empty unless it has no end. Throws Failure that names the kind of file, such as
 * "tag file", when it cannot be read, and the line (bad input) that is no text in UTF-8 or holds a
 * control character.
 */
QStringList readLines(const QString &path, const QString &kind);

}  // namespace host
