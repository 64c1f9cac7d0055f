// Exports: is an address valid for an object of the host's screens, what do a register type's
// addresses look like, and which addresses do the copies of an object get.
#include <QtCore/QStringList>

#include "../address.h"

// ---- Validity -------------------------------------------------------------------------------

namespace {

enum CheckResult {
    Valid = 0,
    WrongKind = 1,
    OutOfRange = 2,
    UnknownType = 3,
    NoAddressText = 4,
    WrongWidth = 5,
    AccessRefused = 6
};

bool isBitRow(const AddressRange &row)
{
    return row.valueBits == QLatin1String("1");
}

/** Converts the text and tests the range that `count` values from it on occupy. */
int checkRange(const RegisterType &type, const QString &addrText, int *addrOut, int count,
               bool bitRequest)
{
    const AddressRange &row = ADDRESS_RANGE_PRO[type.number];
    const QString &regName = REG_LIST[type.number];
    int number = addrOut ? *addrOut : 0;
    const int converted = a2i(addrText, number, row.addrFormat, regName);
    if (addrOut)
        *addrOut = number;
    if (converted == -1)
        return NoAddressText;

    int lowest = 0;
    int highest = 0;
    a2i(row.minAddr, lowest, row.addrFormat, regName);
    a2i(row.maxAddr, highest, row.addrFormat, regName);
    const double unitsPerStep = bitRequest ? 1.0 : row.unitBits.toInt() / 16.0;
    if (number < lowest || number + count / unitsPerStep > highest + 1.0)
        return OutOfRange;
    if (addrOut)
        *addrOut = addrOffset(regName, number);
    return Valid;
}

}  // namespace

int intf_checkAddrValidity(QString regName, QString addrText, int *addrOut, int count,
                           int wordRequest)
{
    const RegisterType type = registerType(regName);
    if (!type.isKnown())
        return UnknownType;
    const bool bitRequest = wordRequest == 0;
    if (isBitRow(ADDRESS_RANGE_PRO[type.number]) != bitRequest)
        return WrongKind;
    return checkRange(type, addrText, addrOut, count, bitRequest);
}

int intf_checkAddr(QString regName, QString addrText, int *addrOut, int dataType, int count,
                   int useMode)
{
    const RegisterType type = registerType(regName);
    if (!type.isKnown())
        return UnknownType;
    const AddressRange &row = ADDRESS_RANGE_PRO[type.number];
    const bool bitRequest = dataType == -1;
    if (isBitRow(row) != bitRequest)
        return WrongKind;
    if (row.access == QLatin1String("R") && (useMode == 1 || useMode == 2))
        return AccessRefused;
    const bool fits32Bits =
        dataType == 1 || dataType == 3 || dataType == 5 || dataType == 6 || dataType == 9;
    if (row.valueBits == QLatin1String("32") && !fits32Bits)
        return WrongWidth;
    return checkRange(type, addrText, addrOut, count, bitRequest);
}

// ---- Description ----------------------------------------------------------------------------

namespace {

const char *widthCode(const QString &valueBits)
{
    if (valueBits.toInt() == 1)
        return "0";
    return valueBits.toInt() == 32 ? "2" : "1";
}

const char *accessCode(const QString &access)
{
    if (access == QLatin1String("R"))
        return "0";
    return access == QLatin1String("W") ? "2" : "1";
}

}  // namespace

int intf_getRegDiscription(QString regName, QStringList &description)
{
    const int number = getIndexFromRegName(regName);
    if (number >= 0) {
        const AddressRange &row = ADDRESS_RANGE_PRO[number];
        description << row.addrFormat << row.minAddr << row.maxAddr
                    << QLatin1String(widthCode(row.valueBits))
                    << QLatin1String(accessCode(row.access));
    }
    return 0;
}

// ---- Series ---------------------------------------------------------------------------------

namespace {

enum CopyResult { NothingToCopy = 0, WithinRange = 1, Capped = 2 };

/** -1 and -2 are one value of 16 and of 32 bits; of bits either takes one address. */
int resolveStep(const RegisterType &type, int step)
{
    if (step == -2 && type.unitKind == WordUnit)
        return 32 / BitsPerWord;
    return qMax(step, 1);
}

int multiCp(const RegisterType &type, int start, int count, int step, QVector<QString> &addrTexts,
            QVector<int> &addrNumbers)
{
    const AddressRange &row = ADDRESS_RANGE_PRO[type.number];
    const QString &regName = REG_LIST[type.number];
    const int resolved = resolveStep(type, step);
    int highest = 0;
    a2i(row.maxAddr, highest, row.addrFormat, regName);

    int result = WithinRange;
    for (int i = 0; i < count; ++i) {
        const int number = addrPlus(start, int(quint32(i) * quint32(resolved)));
        if (number > highest) {
            addrNumbers.append(highest);
            addrTexts.append(row.maxAddr);
            result = Capped;
        } else {
            addrNumbers.append(number);
            addrTexts.append(addressText(type, number));
        }
    }
    return result;
}

}  // namespace

int intf_multiCopy(QString regName, int start, int count, int step, QVector<QString> &addrTexts,
                   QVector<int> &addrNumbers)
{
    const RegisterType type = registerType(regName);
    if (!type.isKnown())
        return NothingToCopy;
    return multiCp(type, start, coveredCount(count), step, addrTexts, addrNumbers);
}
