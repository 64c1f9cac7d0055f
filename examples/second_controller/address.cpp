// Word.bit address texts of the holding registers, such as "20.5".
#include <QtCore/QStringList>

#include "wire.h"

int addr_str2int(const QString &addrText, const QString &regName)
{
    if (registerType(regName).unitKind != WordBitUnit)
        return 0;
    const QStringList parts = addrText.split(QLatin1Char('.'));
    if (parts.size() != 2)
        return -1;
    bool registerOk = false;
    bool bitOk = false;
    const int number = parts.at(0).toUShort(&registerOk);
    const int bit = parts.at(1).toUShort(&bitOk);
    return registerOk && bitOk && bit < BitsPerWord ? bitAddress(number, bit) : -1;
}

QString addr_int2str(int number, const QString &regName)
{
    if (registerType(regName).unitKind != WordBitUnit)
        return QString();
    return QString::number(wordOfBit(number)) + QLatin1Char('.') +
           QString::number(bitInWord(number));
}

int addrOffset(const QString &, int number)
{
    return number;
}
