// Reads tags once, in as few requests as the driver plans for them: one poll cycle.
#ifndef TOLVANE_HOST_TAG_READER_H
#define TOLVANE_HOST_TAG_READER_H

#include "host/connection.h"
#include "host/tags.h"

#include <functional>

namespace host {

struct TagReading
{
    QVector<int> units;  ///< the tag's words or bits
    QString error;       ///< why they are not the controller's; empty when all is well
};

/**
 * Reads the tags over the open connection, which monitors nothing afterwards. progress is called
 * after each block that was read: blocks so far, and words and bits so far of all. Throws Failure
 * when the line is lost and stays away.
 */
QVector<TagReading> readTags(
    Connection &connection, const QVector<Tag> &tags,
    const std::function<void(int blocks, int units, int allUnits)> &progress = nullptr);

}  // namespace host

#endif
