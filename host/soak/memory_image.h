// The controller's memory as a file: how the soak gives it its start, and how it finds it at the
// end, past driver and line.
#ifndef TOLVANE_HOST_SOAK_MEMORY_IMAGE_H
#define TOLVANE_HOST_SOAK_MEMORY_IMAGE_H

#include <QtCore/QMap>
#include <QtCore/QPair>
#include <QtCore/QString>

namespace host {

/** A device as engineers write it, such as "D" or "TX", and the number of one of its words. */
using WordAddress = QPair<QString, int>;

/** Words 0 to 65535; a word that is not listed is 0. */
using MemoryImage = QMap<WordAddress, int>;

/** Both throw Failure that names the file, and the line that is no "device,word,value". */
MemoryImage loadImage(const QString &path);
void saveImage(const QString &path, const MemoryImage &image);

}  // namespace host

#endif
