// Lays tags out in columns and in JSON.
#include "host/tags/tag_text.h"

#include "host/output/csv.h"
#include "host/output/table.h"

#include <QtCore/QJsonDocument>

#include <algorithm>
#include <cmath>

namespace host {

bool hasOwnName(const Driver &driver, const Tag &tag)
{
    return !tag.name.startsWith(addressText(driver, tag));
}

QString addressText(const Driver &driver, const Tag &tag)
{
    Point point = tag.point;
    point.count = valueCount(tag);
    return pointText(driver, point, tag.stationNamed);
}

QString valuesText(const Tag &tag, const QStringList &values)
{
    QStringList texts;
    for (const QString &value : values)
        texts += csvField(value) + (tag.unit.isEmpty() ? QString() : QLatin1Char(' ') + tag.unit);
    return texts.join(", "_s);
}

QString addressText(const Driver &driver, const Tag &tag, int value)
{
    Point point = tag.point;
    point.address += value * (point.count / valueCount(tag));
    point.count = 1;
    return pointText(driver, point, tag.stationNamed);
}

QStringList tagColumns(const Driver &driver, const QVector<Tag> &tags)
{
    Table table({{Table::Left, 0, 0}, {}});
    for (const Tag &tag : tags)
        table.add({tag.name, hasOwnName(driver, tag) ? addressText(driver, tag) : QString()});
    QStringList lines = table.lines();
    int width = 0;
    for (const QString &line : std::as_const(lines))
        width = std::max(width, int(line.size()));
    for (QString &line : lines)
        line = line.leftJustified(width);
    return lines;
}

QJsonObject tagObject(const Driver &driver, const Tag &tag)
{
    return {{"tag"_s, tag.name},
            {"address"_s, addressText(driver, tag, 0)},
            {"number"_s, tag.point.address},
            {"station"_s, tag.point.stationNo}};
}

QJsonObject blockObject(const Driver &driver, const Point &block, bool withStation)
{
    Point first = block;
    first.count = 1;
    return {{"address"_s, pointText(driver, first, withStation)},
            {"number"_s, block.address},
            {"station"_s, block.stationNo},
            {"count"_s, block.count}};
}

QJsonArray valueArray(const QStringList &values)
{
    QJsonArray array;
    for (const QString &value : values) {
        bool isNumber = false;
        const double number = value.toDouble(&isNumber);
        array.append(isNumber && std::isfinite(number) ? QJsonValue(number) : QJsonValue(value));
    }
    return array;
}

QString jsonLine(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) +
           QLatin1Char('\n');
}

}  // namespace host
