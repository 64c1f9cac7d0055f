// Reads tags once, in as few requests as the driver plans for them: one poll cycle.
#pragma once

#include "host/exchange/connection.h"
#include "host/tags/tags.h"

#include <QtCore/QJsonObject>

namespace host {

struct TagReading
{
    QVector<int> units;  ///< the tag's words or bits
    QString error;       ///< why they are not the controller's; empty when all is well
};

/**
 * Opens the connection, if it is not, and reads the tags; it monitors nothing afterwards. A line
 * that cannot be opened, or is lost and stays away, is the error of all that was not read. Throws
 * Failure (bad input) where no line is named.
 */
QVector<TagReading> readTags(Connection &connection, const QVector<Tag> &tags);

/** Such as "D_W:100: wrote 5, the controller holds 7"; empty where it holds what was written. */
QString differenceText(const Tag &tag, const QVector<int> &written, const TagReading &held);

/** Tag, address, values and quality, as of now; an error is the reason of a bad one. */
QJsonObject readingObject(const Connection &connection, const Tag &tag, const TagReading &reading);

}  // namespace host
