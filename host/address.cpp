// Reads and writes address texts; the driver judges them.
#include "host/address.h"

#include "host/failure.h"

#include <QtCore/QRegularExpression>

namespace host {

namespace {

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
    point.count = unitsPerValue;
    if (!match.captured(3).isEmpty())
        point.count *= match.captured(3).toInt();
    if (point.count < 1)
        throw refuse(text, QStringLiteral("expected a count of 1 or more"));
    const RegisterType *type = identity.type(point.regName);
    if (!type)
        throw refuse(text, QStringLiteral("no register type \"%1\"; there are\n  %2")
                               .arg(point.regName, typeNames(identity)));
    point.isBit = type->isBit;

    const int verdict = driver.checkAddrValidity(point.regName, match.captured(2), &point.address,
                                                 point.count, !type->isBit);
    if (verdict == NoAddress)
        throw refuse(text, QStringLiteral("\"%1\" is no address of the form %2")
                               .arg(match.captured(2), type->pattern));
    if (verdict == OutOfRange)
        throw refuse(text, QStringLiteral("outside %1, which reaches from %2 to %3")
                               .arg(type->name, type->firstAddress, type->lastAddress));
    if (verdict != Valid)
        throw refuse(text, QStringLiteral("refused by the driver with code %1").arg(verdict));
    return point;
}

QString pointText(const Driver &driver, const Point &point)
{
    QVector<QString> texts;
    QVector<int> numbers;
    driver.multiCopy(point.regName, point.address, 1, 1, texts, numbers);
    const QString address = texts.isEmpty() ? QString::number(point.address) : texts.first();
    const QString text = point.regName + QLatin1Char(':') + address;
    return point.count == 1 ? text : QStringLiteral("%1x%2").arg(text).arg(point.count);
}

}  // namespace host
