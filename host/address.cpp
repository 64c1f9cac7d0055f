// Reads and writes address texts; the driver judges them.
#include "host/address.h"

#include "host/failure.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace host {

namespace {

constexpr int MostUnits = 1 << 20;  // beyond every type's

enum Validity { Valid, WrongKind, OutOfRange, UnknownType, NoAddress };

Failure refuse(const QString &text, const QString &why)
{
    return Failure(QStringLiteral("address \"%1\": %2").arg(text, why), BadInput);
}

QString typeNames(const Identity &identity)
{
    QStringList names;
    for (const RegisterType &type : identity.types)
        names.append(type.name);
    return names.join(QLatin1String(", "));
}

}  // namespace

Point parsePoint(const Driver &driver, const Identity &identity, const QString &text, int stationNo,
                 int unitsPerValue)
{
    static const QRegularExpression form(QStringLiteral("^([^:]+):([^:x]+)(?:x([0-9]{1,9}))?$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        throw refuse(text, QStringLiteral("expected TYPE:ADDRESS or TYPE:ADDRESSxCOUNT"));

    Point point;
    point.stationNo = stationNo;
    point.regName = match.captured(1);
    const int values = match.captured(3).isEmpty() ? 1 : match.captured(3).toInt();
    if (values < 1 || values > MostUnits / unitsPerValue)
        throw refuse(
            text, QStringLiteral("expected a count from 1 to %1").arg(MostUnits / unitsPerValue));
    point.count = values * unitsPerValue;
    const RegisterType *type = identity.type(point.regName);
    if (!type)
        throw refuse(text, QStringLiteral("no register type \"%1\"; there are\n  %2")
                               .arg(point.regName, typeNames(identity)));
    point.isBit = type->isBit;

    const int verdict = driver.checkAddrValidity(point.regName, match.captured(2), &point.address,
                                                 point.count, !type->isBit);
    if (verdict == NoAddress)
        throw refuse(text, QStringLiteral("\"%1\" is no address of the form %2")
                                   .arg(match.captured(2), type->pattern) +
                               QLatin1String(type->pattern.contains(QLatin1Char('.'))
                                                 ? ", with a bit from 0 to 15"
                                                 : ""));
    if (verdict == OutOfRange)
        throw refuse(text,
                     QStringLiteral("outside %1, which reaches from %2 to %3")
                             .arg(type->name, type->firstAddress, type->lastAddress) +
                         (unitsPerValue == 1
                              ? QString()
                              : QStringLiteral("\n  (a value takes %1 words)").arg(unitsPerValue)));
    if (verdict != Valid)
        throw refuse(text, QStringLiteral("refused by the driver with code %1").arg(verdict));
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
    Point block;
    block.stationNo = item.stationNo;
    block.regName = item.regName;
    block.address = item.startAddr;
    block.count = item.count;
    return block;
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
        text.prepend(QStringLiteral("%1/").arg(point.stationNo));
    return point.count == 1 ? text : QStringLiteral("%1x%2").arg(text).arg(point.count);
}

}  // namespace host
