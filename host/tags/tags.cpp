// Reads tags from arguments, and their values from and to text.
#include "host/tags/tags.h"

#include "host/output/csv.h"
#include "host/output/failure.h"
#include "host/output/table.h"
#include "host/tags/tag_file.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace host {

namespace {

constexpr int HighestStation = 255;

Failure refuse(const QString &message)
{
    return Failure(message, BadInput);
}

// "2/D_W:100x10:float"
void parseAddress(const Driver &driver, const Identity &identity, const QString &text,
                  int stationNo, Tag &tag)
{
    static const QRegularExpression form("^(?:([0-9]{1,9})/)?([^:]*:[^:]*|[^:]*)(?::(.*))?$"_s);
    const QRegularExpressionMatch match = form.match(text);
    const QString station = match.captured(1);
    tag.stationNamed = !station.isEmpty();
    if (tag.stationNamed)
        stationNo = station.toInt();
    if (stationNo > HighestStation)
        throw refuse(
            "address \"%1\": expected a station from 0 to %2"_s.arg(text).arg(HighestStation));
    if (match.lastCapturedIndex() >= 3)
        tag.form = formNamed(match.captured(3));
    tag.point = parsePoint(driver, identity, match.captured(2), stationNo, tag.form.words());
    if (tag.point.isBit && tag.form.format != Format::Plain)
        throw refuse(
            "a bit of %1 has no format \"%2\""_s.arg(tag.point.regName, match.captured(3)));
}

void takeScaling(const TagText &text, Tag &tag)
{
    const bool wanted = text.scaling.isConverted() || text.scaling.decimals >= 0;
    if (wanted && (tag.point.isBit || !tag.form.isNumber()))
        throw refuse(
            "scale, offset and decimals are for numbers, which \"%1\" is not"_s.arg(text.address));
    tag.form.scale = text.scaling.scale;
    tag.form.offset = text.scaling.offset;
    tag.form.decimals = text.scaling.decimals;
}

}  // namespace

QVector<TagText> collectTags(const QStringList &arguments, const QStringList &tagFiles)
{
    QVector<TagText> tags;
    for (const QString &path : tagFiles)
        tags += readTagFile(path);
    for (int i = 0; i < int(arguments.size()); ++i) {
        const QString &argument = arguments[i];
        if (argument.endsWith(".csv"_s, Qt::CaseInsensitive)) {
            tags += readTagFile(argument);
            continue;
        }
        const int equals = int(argument.indexOf(QLatin1Char('=')));
        TagText text;
        text.name = argument.left(std::max(0, equals));
        text.address = argument.mid(equals + 1);
        text.source = "argument %1"_s.arg(i + 1);
        tags += text;
    }
    return tags;
}

Tag parseTag(const Driver &driver, const Identity &identity, const TagText &text, int stationNo)
{
    try {
        Tag tag;
        parseAddress(driver, identity, text.address, stationNo, tag);
        takeScaling(text, tag);
        tag.name = text.name.isEmpty() ? text.address : text.name;
        tag.unit = text.unit;
        return tag;
    } catch (const Failure &failure) {
        const QString why = QString::fromUtf8(failure.what());
        throw refuse(text.name.isEmpty() ? "%1: %2"_s.arg(text.source, why)
                                         : "%1: tag \"%2\": %3"_s.arg(text.source, text.name, why));
    }
}

Tag parseTag(const Driver &driver, const Identity &identity, const QString &name,
             const QString &address, int stationNo, const QString &source)
{
    TagText text;
    text.name = name;
    text.address = address;
    text.source = source;
    return parseTag(driver, identity, text, stationNo);
}

QVector<Tag> parseTags(const Driver &driver, const Identity &identity, const QStringList &arguments,
                       int stationNo, const QStringList &tagFiles)
{
    QVector<Tag> tags;
    for (const TagText &text : collectTags(arguments, tagFiles))
        tags += parseTag(driver, identity, text, stationNo);
    return tags;
}

bool namesStations(const QVector<Tag> &tags)
{
    return std::any_of(tags.cbegin(), tags.cend(), [](const Tag &tag) { return tag.stationNamed; });
}

int valueCount(const Tag &tag)
{
    return tag.point.count / tag.form.words();
}

QStringList formatValues(const Tag &tag, const QVector<int> &units)
{
    const int step = tag.form.words();
    QStringList texts;
    for (int first = 0; first + step <= int(units.size()); first += step)
        texts += valueText(tag.form, units, first);
    return texts;
}

QString joinedValues(const Tag &tag, const QVector<int> &units)
{
    QStringList fields;
    const QStringList values = formatValues(tag, units);
    for (const QString &value : values)
        fields += csvField(value);
    return fields.join(QLatin1Char(','));
}

QVector<int> parseValues(const Tag &tag, const QString &text)
{
    bool ok = false;
    const QStringList parts = csvFields(text, QLatin1Char(','), &ok);
    if (!ok || parts.size() != valueCount(tag))
        throw refuse("%1: \"%2\": expected %3, with commas between"_s.arg(
            tag.name, text, countText(valueCount(tag), "value")));
    QVector<int> units;
    for (const QString &part : parts) {
        const QVector<int> value = unitsOfText(tag.form, part, &ok);
        if (!ok || (tag.point.isBit && value.first() > 1))
            throw refuse("%1: \"%2\" is no value for it; expected %3"_s.arg(
                tag.name, part, tag.point.isBit ? "0 or 1"_s : tag.form.expectation()));
        units += value;
    }
    return units;
}

}  // namespace host
