// Export: the address series of a screen object that is copied several times.
#include "../address.h"

namespace {

enum CopyResult { UnknownType = 0, WithinRange = 1, Capped = 2 };

/** Address steps that one value of `bits` bits takes; at least 1. */
int stepsOfValue(const RegisterType &type, int bits)
{
    if (type.unitKind != WordUnit)
        return 1;
    return qMax(1, bits / ADDRESS_RANGE_PRO[type.number].unitBits.toInt());
}

int resolveStep(const RegisterType &type, int step)
{
    if (step == -1)
        return stepsOfValue(type, 16);
    if (step == -2)
        return stepsOfValue(type, 32);
    return qMax(step, 1);
}

QString addressText(int number, const QString &format, const QString &regName)
{
    if (isMixedFormat(format))
        return addr_int2str(number, regName);
    char text[12];
    printAddressNumber(text, number, format);
    return QLatin1String(text);
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
            addrTexts.append(addressText(number, row.addrFormat, regName));
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
        return UnknownType;
    return multiCp(type, start, count, step, addrTexts, addrNumbers);
}
