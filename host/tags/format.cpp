// Values from and to text.
#include "host/tags/format.h"

#include "host/output/failure.h"
#include "host/output/table.h"

#include <cstring>
#include <limits>

namespace host {

namespace {

constexpr int MostCharacters = 254;  // as many as one request can carry
constexpr int HighestBcd = 9999;

struct FormatRow
{
    Format format;
    const char *name;  ///< as people write it; empty for Plain
    int words;         ///< of one value
    qint64 lowest;     ///< whole numbers only
    qint64 highest;
};

// In the order of Format.
constexpr FormatRow Formats[] = {
    {Format::Plain, "", 1, 0, 0xFFFF},
    {Format::Int16, "int16", 1, -0x8000, 0x7FFF},
    {Format::UInt16, "uint16", 1, 0, 0xFFFF},
    {Format::Int32, "int32", 2, -0x80000000LL, 0x7FFFFFFF},
    {Format::UInt32, "uint32", 2, 0, 0xFFFFFFFFLL},
    {Format::Float, "float", 2, 0, 0},
    {Format::Hex, "hex", 1, 0, 0xFFFF},
    {Format::Bin, "bin", 1, 0, 0xFFFF},
    {Format::Bcd, "bcd", 1, 0, HighestBcd},
    {Format::String, "string", 0, 0, 0},
};

const FormatRow &rowOf(Format format)
{
    return Formats[int(format)];
}

QString hexText(int word)
{
    return "0x"_s + "%1"_s.arg(word, 4, 16, QLatin1Char('0')).toUpper();
}

// The shortest text that reads back as the same float.
QString floatText(float value)
{
    QString text;
    for (int digits = 6; digits <= std::numeric_limits<float>::max_digits10; ++digits) {
        text = QString::number(static_cast<double>(value), 'g', digits);
        if (!(text.toFloat() < value) && !(text.toFloat() > value))
            break;
    }
    return text;
}

float floatOf(quint32 bits)
{
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Its hex digits as decimal ones; -1 when one is none.
int bcdValue(int word)
{
    bool ok = false;
    const int value = QString::number(word, 16).toInt(&ok);
    return ok ? value : -1;
}

int characterShift(const Form &form, int character)
{
    return (character % 2 == 1) == form.highFirst ? 0 : 8;
}

QString stringText(const Form &form, const QVector<int> &units, int first)
{
    QByteArray bytes;
    for (int i = 0; i < form.length; ++i)
        bytes += static_cast<char>(units[first + i / 2] >> characterShift(form, i));
    while (bytes.endsWith('\0'))
        bytes.chop(1);
    QString text;
    for (const char byte : std::as_const(bytes)) {
        const QChar sign = QLatin1Char(byte);
        if (sign == QLatin1Char('\\'))
            text += "\\\\"_s;
        else if (sign.isPrint())
            text += sign;
        else
            text += "\\x%1"_s.arg(sign.unicode(), 2, 16, QLatin1Char('0'));
    }
    return text;
}

QVector<int> unitsOfString(const Form &form, const QString &text, bool *ok)
{
    QByteArray bytes;
    *ok = true;
    for (int i = 0; i < int(text.size()) && *ok; ++i) {
        ushort sign = text[i].unicode();
        if (sign == '\\' && text.mid(i + 1, 1) == "x"_s) {
            const QString digits = text.mid(i + 2, 2);
            sign = digits.toUShort(ok, 16);
            // Neither "4" nor "+4".
            *ok = *ok && digits.size() == 2 && digits[0].isLetterOrNumber();
            i += 3;
        } else if (sign == '\\') {
            *ok = text.mid(++i, 1) == "\\"_s;
        }
        *ok = *ok && sign <= 0xFF;
        bytes += static_cast<char>(sign);
    }
    *ok = *ok && bytes.size() <= form.length;
    QVector<int> units(form.words(), 0);
    for (int i = 0; i < int(bytes.size()) && *ok; ++i)
        units[i / 2] |= static_cast<uchar>(bytes[i]) << characterShift(form, i);
    return units;
}

// A number that is written otherwise than it is held: scaled, or with a fixed count of decimals.
QString convertedText(const Form &form, double number)
{
    const double shown = number * form.scale + form.offset;
    if (form.decimals >= 0)
        return QString::number(shown, 'f', form.decimals);
    // What scaling adds to the last digits of a double nobody measured.
    return QString::number(shown, 'g', 12);
}

// The bits of a number, 32 at most.
quint32 bitsOfNumber(const Form &form, const QString &text, bool *ok)
{
    const FormatRow &row = rowOf(form.format);
    if (form.format == Format::Float) {
        const float value = text.toFloat(ok);
        quint32 bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }
    const QString prefix = row.lowest == 0 ? text.left(2).toLower() : QString();
    const int base = prefix == "0x"_s             ? 16
                     : prefix == "0b"_s           ? 2
                     : form.format == Format::Hex ? 16
                     : form.format == Format::Bin ? 2
                                                  : 10;
    const qint64 value = text.mid(prefix == "0b"_s ? 2 : 0).toLongLong(ok, base);
    const bool isRaw = base != 10;  // the word itself
    *ok = *ok && value >= row.lowest &&
          value <= (isRaw && form.format == Format::Bcd ? 0xFFFF : row.highest);
    return static_cast<quint32>(form.format == Format::Bcd && !isRaw ? text.toInt(nullptr, 16)
                                                                     : value);
}

}  // namespace

int Form::words() const
{
    return format == Format::String ? (length + 1) / 2 : rowOf(format).words;
}

bool Form::isNumber() const
{
    return format != Format::Hex && format != Format::Bin && format != Format::String;
}

QString Form::expectation() const
{
    const FormatRow &row = rowOf(format);
    if (format == Format::String)
        return "at most %1; \\\\ for a backslash, \\x00 to \\xff for any byte"_s.arg(
            countText(length, "character"));
    if (format == Format::Float)
        return "a number"_s;
    if (format == Format::Hex)
        return "a hexadecimal number from 0x0000 to 0xFFFF"_s;
    if (format == Format::Bin)
        return "a binary number of 16 digits at most, such as 0b101 or 101"_s;
    return "a whole number from %1 to %2"_s.arg(row.lowest).arg(row.highest);
}

Form formNamed(const QString &name)
{
    static const QString bigEndian = "-be"_s;
    Form form;
    QString base = name.section(QLatin1Char(':'), 0, 0);
    form.highFirst = base.endsWith(bigEndian);
    if (form.highFirst)
        base.chop(bigEndian.size());
    const auto *row = std::find_if(
        std::begin(Formats) + 1, std::end(Formats),
        [&](const FormatRow &candidate) { return base == QLatin1String(candidate.name); });
    const bool known = row != std::end(Formats) && !(form.highFirst && row->words == 1);
    const bool isString = known && row->format == Format::String;
    if (!known || name.contains(QLatin1Char(':')) != isString)
        throw Failure(
            "no format %1; there are\n  int16, uint16, int32, uint32, "
            "float, hex, bin, bcd, string:N; and with the high half\n  "
            "first int32-be, uint32-be, float-be, string-be:N"_s.arg(quoted(name)),
            BadInput);
    form.format = row->format;
    if (isString) {
        form.length = name.section(QLatin1Char(':'), 1).toInt();
        if (form.length < 1 || form.length > MostCharacters)
            throw Failure(
                "format %1: expected a length from 1 to %2"_s.arg(quoted(name)).arg(MostCharacters),
                BadInput);
    }
    return form;
}

QString valueText(const Form &form, const QVector<int> &units, int first)
{
    if (form.format == Format::String)
        return stringText(form, units, first);
    const int word = units[first];
    if (form.format == Format::Hex)
        return hexText(word);
    if (form.format == Format::Bin)
        return "0b"_s + "%1"_s.arg(word, 16, 2, QLatin1Char('0'));
    quint32 bits = static_cast<quint32>(word);
    if (form.words() == 2) {
        const int low = units[first + (form.highFirst ? 1 : 0)];
        const int high = units[first + (form.highFirst ? 0 : 1)];
        bits = static_cast<quint32>(low) | static_cast<quint32>(high) << 16;
    }
    const bool isPlain = !form.isConverted() && form.decimals < 0;
    if (form.format == Format::Float)
        return isPlain ? floatText(floatOf(bits))
                       : convertedText(form, static_cast<double>(floatOf(bits)));
    if (form.format == Format::Bcd && bcdValue(word) < 0)
        return hexText(word);
    const qint64 number = form.format == Format::Int16   ? static_cast<qint16>(bits)
                          : form.format == Format::Int32 ? static_cast<qint32>(bits)
                          : form.format == Format::Bcd   ? bcdValue(word)
                                                         : qint64(bits);
    return isPlain ? QString::number(number) : convertedText(form, static_cast<double>(number));
}

QVector<int> unitsOfText(const Form &form, const QString &text, bool *ok)
{
    if (form.format == Format::String)
        return unitsOfString(form, text, ok);
    const quint32 bits = bitsOfNumber(form, text.trimmed(), ok);
    QVector<int> units{static_cast<int>(bits & 0xFFFF)};
    if (form.words() == 2)
        units.insert(form.highFirst ? 0 : 1, static_cast<int>(bits >> 16));
    return units;
}

}  // namespace host
