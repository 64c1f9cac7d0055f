// Reads tags from arguments and tag files, and their values from and to text.
#include "host/tags.h"

#include "host/failure.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cstring>
#include <limits>

namespace host {

namespace {

struct FormatRow
{
    Format format;
    const char *name;  ///< as people write it; empty for Plain
    int words;         ///< of one value
    qint64 lowest;     ///< whole numbers only
    qint64 highest;
};

constexpr FormatRow Formats[] = {
    {Format::Plain, "", 1, 0, 0xFFFF},
    {Format::Int16, "int16", 1, -0x8000, 0x7FFF},
    {Format::UInt16, "uint16", 1, 0, 0xFFFF},
    {Format::Int32, "int32", 2, -0x80000000LL, 0x7FFFFFFF},
    {Format::UInt32, "uint32", 2, 0, 0xFFFFFFFFLL},
    {Format::Float, "float", 2, 0, 0},
    {Format::Hex, "hex", 1, 0, 0xFFFF},
};

const FormatRow &rowOf(Format format)
{
    return *std::find_if(std::begin(Formats), std::end(Formats),
                         [=](const FormatRow &row) { return row.format == format; });
}

Failure refuse(const QString &message)
{
    return Failure(message, BadInput);
}

const FormatRow &findFormat(const QString &name)
{
    const auto *row = std::find_if(
        std::begin(Formats) + 1, std::end(Formats),
        [&](const FormatRow &candidate) { return name == QLatin1String(candidate.name); });
    if (row == std::end(Formats))
        throw refuse(QStringLiteral("no format \"%1\"; expected int16, uint16, int32, uint32, "
                                    "float or hex")
                         .arg(name));
    return *row;
}

// "D_W:100x10:float"
Tag parseAddress(const Driver &driver, const Identity &identity, const QString &text, int stationNo)
{
    Tag tag;
    QString address = text;
    const int formatAt = int(text.indexOf(QLatin1Char(':'), text.indexOf(QLatin1Char(':')) + 1));
    if (text.count(QLatin1Char(':')) > 1) {
        address = text.left(formatAt);
        tag.format = findFormat(text.mid(formatAt + 1)).format;
    }
    tag.point = parsePoint(driver, identity, address, stationNo, rowOf(tag.format).words);
    if (tag.point.isBit && tag.format != Format::Plain)
        throw refuse(QStringLiteral("a bit of %1 has no format \"%2\"")
                         .arg(tag.point.regName, QLatin1String(rowOf(tag.format).name)));
    return tag;
}

bool isHeader(const QString &line)
{
    return line.startsWith(QLatin1String("name,address"), Qt::CaseInsensitive);
}

QVector<TagText> readTagFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw refuse(
            QStringLiteral("cannot read the tag file %1: %2").arg(path, file.errorString()));
    QVector<TagText> tags;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (int i = 0; i < int(lines.size()); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')) || isHeader(line))
            continue;
        const QString source = QStringLiteral("%1:%2").arg(QFileInfo(path).fileName()).arg(i + 1);
        const QStringList fields = line.split(QLatin1Char(','));
        if (fields.size() < 2 || fields.size() > 3)
            throw refuse(QStringLiteral("%1: \"%2\": expected name,address,format or name,address")
                             .arg(source, line));
        const QString format = fields.value(2).trimmed();
        const QString address =
            fields[1].trimmed() + (format.isEmpty() ? QString() : QLatin1Char(':') + format);
        tags += TagText{fields[0].trimmed(), address, source};
    }
    if (tags.isEmpty())
        throw refuse(QStringLiteral("there is no tag in %1").arg(path));
    return tags;
}

quint32 joined(const QVector<int> &units, int low)
{
    return static_cast<quint32>(units[low]) | static_cast<quint32>(units[low + 1]) << 16;
}

// The shortest text that reads back as the same float.
QString floatText(quint32 bits)
{
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    QString text;
    for (int digits = 6; digits <= std::numeric_limits<float>::max_digits10; ++digits) {
        text = QString::number(static_cast<double>(value), 'g', digits);
        if (!(text.toFloat() < value) && !(text.toFloat() > value))
            break;
    }
    return text;
}

QString valueText(Format format, const QVector<int> &units, int first)
{
    switch (format) {
        case Format::Int16:
            return QString::number(static_cast<qint16>(units[first]));
        case Format::Int32:
            return QString::number(static_cast<qint32>(joined(units, first)));
        case Format::UInt32:
            return QString::number(joined(units, first));
        case Format::Float:
            return floatText(joined(units, first));
        case Format::Hex:
            return QLatin1String("0x") +
                   QStringLiteral("%1").arg(units[first], 4, 16, QLatin1Char('0')).toUpper();
        case Format::Plain:
        case Format::UInt16:
            break;
    }
    return QString::number(units[first]);
}

// The bits of one value, 32 at most; ok is false when the text is none of the tag's values.
quint32 parseValue(const Tag &tag, const QString &text, bool *ok)
{
    if (tag.format == Format::Float) {
        const float value = text.toFloat(ok);
        quint32 bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }
    const FormatRow &row = rowOf(tag.format);
    const bool isHex = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    const int base = (isHex && row.lowest == 0) || tag.format == Format::Hex ? 16 : 10;
    const qint64 value = text.toLongLong(ok, base);
    const qint64 highest = tag.point.isBit ? 1 : row.highest;
    *ok = *ok && value >= row.lowest && value <= highest;
    return static_cast<quint32>(value);
}

QString expectation(const Tag &tag)
{
    const FormatRow &row = rowOf(tag.format);
    if (tag.point.isBit)
        return QStringLiteral("0 or 1");
    if (tag.format == Format::Float)
        return QStringLiteral("a number");
    if (tag.format == Format::Hex)
        return QStringLiteral("a hexadecimal number from 0x0000 to 0xFFFF");
    return QStringLiteral("a whole number from %1 to %2").arg(row.lowest).arg(row.highest);
}

}  // namespace

QVector<TagText> collectTags(const QStringList &arguments)
{
    QVector<TagText> tags;
    for (int i = 0; i < int(arguments.size()); ++i) {
        const QString &argument = arguments[i];
        const int equals = int(argument.indexOf(QLatin1Char('=')));
        if (argument.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive))
            tags += readTagFile(argument);
        else
            tags += TagText{argument.left(std::max(0, equals)), argument.mid(equals + 1),
                            QStringLiteral("argument %1").arg(i + 1)};
    }
    return tags;
}

Tag parseTag(const Driver &driver, const Identity &identity, const QString &name,
             const QString &address, int stationNo, const QString &source)
{
    try {
        Tag tag = parseAddress(driver, identity, address, stationNo);
        tag.name = name.isEmpty() ? address : name;
        tag.source = source;
        return tag;
    } catch (const Failure &failure) {
        const QString why = QString::fromUtf8(failure.what());
        throw refuse(name.isEmpty() ? QStringLiteral("%1: %2").arg(source, why)
                                    : QStringLiteral("%1: tag \"%2\": %3").arg(source, name, why));
    }
}

QVector<Tag> parseTags(const Driver &driver, const Identity &identity, const QStringList &arguments,
                       int stationNo)
{
    QVector<Tag> tags;
    for (const TagText &text : collectTags(arguments))
        tags += parseTag(driver, identity, text.name, text.address, stationNo, text.source);
    return tags;
}

int valueCount(const Tag &tag)
{
    return tag.point.count / rowOf(tag.format).words;
}

QStringList formatValues(const Tag &tag, const QVector<int> &units)
{
    const int step = rowOf(tag.format).words;
    QStringList texts;
    for (int first = 0; first + step <= int(units.size()); first += step)
        texts += valueText(tag.format, units, first);
    return texts;
}

QVector<int> parseValues(const Tag &tag, const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != valueCount(tag))
        throw refuse(QStringLiteral("%1: \"%2\": expected %3 value(s) with commas between")
                         .arg(tag.name, text)
                         .arg(valueCount(tag)));
    QVector<int> units;
    for (const QString &part : parts) {
        bool ok = false;
        const quint32 bits = parseValue(tag, part.trimmed(), &ok);
        if (!ok)
            throw refuse(QStringLiteral("%1: \"%2\" is no value for it; expected %3")
                             .arg(tag.name, part, expectation(tag)));
        for (int word = 0; word < rowOf(tag.format).words; ++word)
            units += static_cast<int>(bits >> 16 * word & 0xFFFF);
    }
    return units;
}

}  // namespace host
