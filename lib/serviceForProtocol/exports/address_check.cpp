// Exports: is an address text valid for an object of the host's screens?
#include "../address.h"

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
