// Tags and their values as the commands print them: columns for people, JSON for programs.
#pragma once

#include "host/tags/tags.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

namespace host {

/** False when the tag is called by its address. */
bool hasOwnName(const Driver &driver, const Tag &tag);

/** The tag's address, its count in values: "D_W:100x2" for two values of any format. */
QString addressText(const Driver &driver, const Tag &tag);

/** The values for people: "1.5 bar, 2 bar" with the tag's unit, strings that hold a comma quoted.
 */
QString valuesText(const Tag &tag, const QStringList &values);

/** The address of one of the tag's values. */
QString addressText(const Driver &driver, const Tag &tag, int value);

/**
 * The left-hand columns, of one width: names, and addresses where a tag was given a name of its
 * own.
 */
QStringList tagColumns(const Driver &driver, const QVector<Tag> &tags);

/** An object with the tag's name, and the address and address number of its first value. */
QJsonObject tagObject(const Driver &driver, const Tag &tag);

/** An object with the address, address number, station and count of a request's block. */
QJsonObject blockObject(const Driver &driver, const Point &block, bool withStation);

/** Numbers as numbers; what JSON has no number for (0x1F, nan) as texts. */
QJsonArray valueArray(const QStringList &values);

/** The object as one line, with the newline. */
QString jsonLine(const QJsonObject &object);

}  // namespace host
