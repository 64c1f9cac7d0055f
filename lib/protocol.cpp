// The state object, and the facts of the register types that are worked out once, at load.
#include "protocol.h"

Protocol driver;

namespace {

UnitKind unitKindOf(const QString &name, const AddressRange &row)
{
    const QLatin1String one("1");
    const QLatin1String sixteen("16");
    const bool bitName = name.contains(QLatin1String("_bit"));
    if (row.valueBits == sixteen && row.unitBits == sixteen)
        return WordUnit;
    if (row.valueBits == one && bitName && row.unitBits == sixteen)
        return WordBitUnit;
    if (row.valueBits == one && !bitName)
        return BitUnit;
    return NoUnit;
}

}  // namespace

Protocol::Protocol() : registerTypes(RegisterTypeCount)
{
    for (int number = 0; number < RegisterTypeCount; ++number) {
        const QString &name = REG_LIST[number];
        regNameList.append(name);
        RegisterType &type = registerTypes[number];
        type.number = number;
        type.unitKind = unitKindOf(name, ADDRESS_RANGE_PRO[number]);
        type.areaName = type.unitKind == BitUnit ? name : name.left(name.indexOf(QLatin1Char('_')));
        type.wordType = number;
        type.bitType = -1;
        for (int other = 0; type.unitKind == WordBitUnit && other < number; ++other) {
            if (registerTypes.at(other).areaName == type.areaName) {
                type.areaName = registerTypes.at(other).areaName;
                type.wordType = other;
                registerTypes[other].bitType = number;
            }
        }
        // A row that nothing could read or write must not get as far as a controller.
        if (type.unitKind == NoUnit || (type.unitKind == WordBitUnit && type.wordType == number))
            qFatal(
                "register type %s has no storage unit: expected words of 16 bits, their bits "
                "(behind the words in the table) or bits of their own",
                qPrintable(name));
    }
}

int getIndexFromRegName(const QString &name)
{
    for (int number = 0; number < RegisterTypeCount; ++number) {
        if (sameText(name, REG_LIST[number]))
            return number;
    }
    return -1;
}

RegisterType registerType(const QString &name)
{
    const int number = getIndexFromRegName(name);
    if (number >= 0)
        return driver.registerTypes.at(number);
    // A text of the driver's own: the host's may lie over memory that goes away.
    RegisterType unknown = {RegisterTypeCount,
                            unitKindOf(name, ADDRESS_RANGE_PRO[RegisterTypeCount]),
                            QString(name.constData(), int(name.size())), RegisterTypeCount, -1};
    return unknown;
}

AddressSpan wordSpan(const AddressSpan &bits)
{
    AddressSpan words = bits;
    words.regNumber = driver.registerTypes.at(bits.regNumber).wordType;
    words.startAddr = wordOfBit(bits.startAddr);
    words.count = wordsOfBits(bits.startAddr, bits.count);
    return words;
}

void setRange(VARIABLE &item, const AddressSpan &span)
{
    item.stationNo = span.stationNo;
    item.regName = REG_LIST[span.regNumber];
    item.startAddr = span.startAddr;
    item.count = span.count;
}

void notifyHost(int first, int stationNo, QString text, int address)
{
    if (driver.settings.valueChangeCallBack)
        driver.settings.valueChangeCallBack(first, stationNo, text, address);
}
