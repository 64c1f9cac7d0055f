// Word.bit address texts and the offset hook.
#include <QtCore/QStringList>

#include "tolvane_link.h"

namespace {

/** Whether addresses of the type are written as word and bit; also of unknown "_bit" names. */
bool hasBitAddresses(const QString &regName)
{
    const UnitKind kind = registerType(regName).unitKind;
    return kind == WordBitUnit || kind == NoUnit;
}

}  // namespace

int addr_str2int(const QString &addrText, const QString &regName)
{
    if (!hasBitAddresses(regName))
        return 0;
    const QStringList parts = addrText.split(QLatin1Char('.'));
    if (parts.size() != 2)
        return -1;
    bool wordOk = false;
    bool bitOk = false;
    const int word = parts.at(0).toInt(&wordOk);
    const int bit = parts.at(1).toInt(&bitOk);
    if (!wordOk || !bitOk || bit < 0 || bit > 15)
        return -1;
    // A word so far out that its bits have no address number is no address either.
    const qint64 number = qint64(word) * BitsPerWord + bit;
    return number == int(number) ? int(number) : -1;
}

QString addr_int2str(int number, const QString &regName)
{
    if (!hasBitAddresses(regName))
        return QString();
    return QString::number(number / BitsPerWord) + QLatin1Char('.') +
           QString::number(number % BitsPerWord);
}

int addrOffset(const QString &, int number)
{
    return number;
}
