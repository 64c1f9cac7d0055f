// Files that are written in one go.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace host {

/**
 * Writes the file, or replaces it: the old one stays until the new one is complete on the disk.
 * "-" is standard output; what is no regular file (/dev/full, a pipe) is written into. Throws
 * Failure that names the file and the reason, such as a full disk.
 */
void replaceFile(const QString &path, const QByteArray &content);

}  // namespace host
