// Reads and writes address texts; the driver judges them.
#include "host/driver/address.h"

#include "host/output/failure.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace host {

namespace {

constexpr int MostUnits = 1 << 20;  // beyond every type's

enum Validity { Valid, WrongKind, OutOfRange, UnknownType, NoAddress };

Failure refuse(const QString &text, const QString &why)
{
    return Failure("address %1: %2"_s.arg(quoted(text), why), BadInput);
}

QString typeNames(const Identity &identity)
{
    QStringList names;
    for (const RegisterType &type : identity.types)
        names.append(type.name);
    return names.join(", "_s);
}

}  // namespace

Point parsePoint(const Driver &driver, const QString &text, int unitsPerValue)
{
    static const QRegularExpression form("^([^:]+):([^:x]+)(?:x([0-9]{1,9}))?$"_s);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        throw refuse(text, "expected TYPE:ADDRESS or TYPE:ADDRESSxCOUNT"_s);

    Point point;
    point.stationNo = driver.stationNo;
    point.regName = match.captured(1);
    const int values = match.captured(3).isEmpty() ? 1 : match.captured(3).toInt();
    if (values < 1 || values > MostUnits / unitsPerValue)
        throw refuse(text, "expected a count from 1 to %1"_s.arg(MostUnits / unitsPerValue));
    point.count = values * unitsPerValue;
    const RegisterType *type = driver.identity.type(point.regName);
    if (!type)
        throw refuse(text, "no register type %1; there are\n  %2"_s.arg(
                               quoted(point.regName), typeNames(driver.identity)));
    point.isBit = type->isBit;

    const int verdict = driver.checkAddrValidity(point.regName, match.captured(2), &point.address,
                                                 point.count, !type->isBit);
    if (verdict == NoAddress)
        throw refuse(
            text,
            "%1 is no address of the form %2"_s.arg(quoted(match.captured(2)), type->pattern) +
                QLatin1String(type->pattern.contains(QLatin1Char('.')) ? ", with a bit from 0 to 15"
                                                                       : ""));
    if (verdict == OutOfRange)
        throw refuse(
            text, "outside %1, which reaches from %2 to %3"_s.arg(type->name, type->firstAddress,
                                                                  type->lastAddress) +
                      (unitsPerValue == 1 ? QString()
                                          : "\n  (a value takes %1 words)"_s.arg(unitsPerValue)));
    if (verdict != Valid)
        throw refuse(text, "refused by the driver with code %1"_s.arg(verdict));
    return point;
}

QString memoryArea(const QString &regName)
{
    return regName.section(QLatin1Char('_'), 0, 0);
}

int unitsPerUnit(const Point &point, const Point &block)
{
    return point.isBit && point.regName != block.regName ? BitsPerWord : 1;
}

Point blockOf(const VARIABLE &item)
{
    return {item.stationNo, item.regName, item.startAddr, item.count};
}

Point provingPart(const Point &point, int words)
{
    // Two words begin one below the point's first: above it the type may end.
    const int unitsPerWord = point.isBit ? BitsPerWord : 1;
    const int word = point.address / unitsPerWord;
    Point part = point;
    part.address = std::max(0, word - (words - 1)) * unitsPerWord;
    part.count = (words - 1) * unitsPerWord + 1;
    return part;
}

Part partInside(const Point &point, const Point &block)
{
    if (point.stationNo != block.stationNo ||
        memoryArea(point.regName) != memoryArea(block.regName))
        return {};
    const int scale = unitsPerUnit(point, block);
    const int first = std::max(point.address, block.address * scale);
    const int end = std::min(point.address + point.count, (block.address + block.count) * scale);
    return {first - point.address, std::max(0, end - first)};
}

QString pointText(const Driver &driver, const Point &point, bool withStation)
{
    QVector<QString> texts;
    QVector<int> numbers;
    driver.multiCopy(point.regName, point.address, 1, 1, texts, numbers);
    const QString address = texts.isEmpty() ? QString::number(point.address) : texts.first();
    QString text = point.regName + QLatin1Char(':') + address;
    if (withStation)
        text.prepend("%1/"_s.arg(point.stationNo));
    return point.count == 1 ? text : "%1x%2"_s.arg(text).arg(point.count);
}

}  // namespace host
