// Judges tags that were given, and reads their values from and to text.
#include "host/tags/tags.h"

#include "host/output/failure.h"
#include "host/output/table.h"

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
void parseAddress(const Driver &driver, const QString &text, Tag &tag)
{
    static const QRegularExpression form("^(?:([0-9]{1,9})/)?([^:]*:[^:]*|[^:]*)(?::(.*))?$"_s);
    const QRegularExpressionMatch match = form.match(text);
    const QString station = match.captured(1);
    tag.stationNamed = !station.isEmpty();
    const int stationNo = tag.stationNamed ? station.toInt() : driver.stationNo;
    if (stationNo > HighestStation)
        throw refuse(
            "address %1: expected a station from 0 to %2"_s.arg(quoted(text)).arg(HighestStation));
    if (match.lastCapturedIndex() >= 3)
        tag.form = formNamed(match.captured(3));
    tag.point = parsePoint(driver, match.captured(2), tag.form.words());
    tag.point.stationNo = stationNo;
    if (tag.point.isBit && tag.form.format != Format::Plain)
        throw refuse(
            "a bit of %1 has no format %2"_s.arg(tag.point.regName, quoted(match.captured(3))));
}

void takeScaling(const TagText &text, Tag &tag)
{
    const bool wanted = text.scaling.isConverted() || text.scaling.decimals >= 0;
    if (wanted && (tag.point.isBit || !tag.form.isNumber()))
        throw refuse("scale, offset and decimals are for numbers, which %1 is not"_s.arg(
            quoted(text.address)));
    tag.form.scale = text.scaling.scale;
    tag.form.offset = text.scaling.offset;
    tag.form.decimals = text.scaling.decimals;
}

}  // namespace

Tag parseTag(const Driver &driver, const TagText &text)
{
    try {
        Tag tag;
        if (!text.twin.isEmpty())
            throw refuse("another one has that name, %1"_s.arg(text.twin));
        if (printable(text.name) != text.name)
            throw refuse("expected a name without control characters"_s);
        parseAddress(driver, text.address, tag);
        takeScaling(text, tag);
        tag.name = text.name.isEmpty() ? text.address : text.name;
        tag.unit = text.unit;
        return tag;
    } catch (const Failure &failure) {
        const QString why = failure.text();
        throw refuse(text.name.isEmpty()
                         ? "%1: %2"_s.arg(text.source, why)
                         : "%1: tag %2: %3"_s.arg(text.source, quoted(text.name), why));
    }
}

QVector<Tag> parseTags(const Driver &driver, const QStringList &arguments,
                       const QStringList &tagFiles)
{
    QVector<Tag> tags;
    for (const TagText &text : collectTags(arguments, tagFiles))
        tags += parseTag(driver, text);
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

QVector<int> parseValues(const Tag &tag, const QStringList &values)
{
    if (values.size() != valueCount(tag))
        throw refuse("%1: %2: expected %3, with commas between"_s.arg(
            tag.name, quoted(values.join(QLatin1Char(','))), countText(valueCount(tag), "value")));
    QVector<int> units;
    for (const QString &text : values) {
        bool ok = false;
        const QVector<int> value = unitsOfText(tag.form, text, &ok);
        if (!ok || (tag.point.isBit && value.first() > 1))
            throw refuse("%1: %2 is no value for it; expected %3"_s.arg(
                tag.name, quoted(text), tag.point.isBit ? "0 or 1"_s : tag.form.expectation()));
        units += value;
    }
    return units;
}

}  // namespace host
