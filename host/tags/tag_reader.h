// Reads tags once, in as few requests as the driver plans for them: one poll cycle.
#pragma once

#include "host/exchange/connection.h"
#include "host/tags/tags.h"

#include <QtCore/QJsonObject>

#include <functional>

namespace host {

struct TagReading
{
    QVector<int> units;  ///< the tag's words or bits
    QString error;       ///< why they are not the controller's; empty when all is well
};

/**
 * Opens the connection and reads the tags; it monitors nothing afterwards. progress is called
 * after each block that was read: blocks so far, and words and bits so far of all. A line that
 * cannot be opened, or is lost and stays away, is the error of all that was not read. Throws
 * Failure (bad input) where no line is named.
 */
QVector<TagReading> readTags(
    Connection &connection, const QVector<Tag> &tags,
    const std::function<void(int blocks, int units, int allUnits)> &progress = nullptr);

/** Tag, address, values and quality, as of now; an error is the reason of a bad one. */
QJsonObject readingObject(const Connection &connection, const Tag &tag, const TagReading &reading);

}  // namespace host
