// Lays tags out in columns and in JSON.
#include "host/tags/tag_text.h"

#include "host/output/csv.h"
#include "plc/literals.h"

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

TagColumns::TagColumns(const Driver &driver, const QVector<Tag> &tags) : m_driver(driver)
{
    for (const Tag &tag : tags) {
        m_nameWidth = std::max(m_nameWidth, int(tag.name.size()));
        if (hasOwnName(driver, tag))
            m_addressWidth = std::max(m_addressWidth, int(addressText(driver, tag).size()));
    }
}

QString TagColumns::text(const Tag &tag) const
{
    QString name = tag.name.leftJustified(m_nameWidth);
    if (m_addressWidth == 0)
        return name;
    const QString address = hasOwnName(m_driver, tag) ? addressText(m_driver, tag) : QString();
    return name + "  "_s + address.leftJustified(m_addressWidth);
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
