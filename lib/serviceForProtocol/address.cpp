// Address texts of any register type, and the key that orders read planning.
#include "address.h"

#include <cstdio>

bool isMixedFormat(const QString &format)
{
    return !format.isEmpty() && format.count(format.at(0)) != format.size();
}

int a2i(const QString &addrText, int &number, const QString &format, const QString &regName)
{
    if (isMixedFormat(format)) {
        const int converted = addr_str2int(addrText, regName);
        if (converted == -1)
            return -1;
        number = converted;
        return 1;
    }
    int base = 10;
    if (format.endsWith(QLatin1Char('O')))
        base = 8;
    else if (format.endsWith(QLatin1Char('H')))
        base = 16;
    bool ok = false;
    number = addrText.toInt(&ok, base);
    return ok ? 1 : -1;
}

void printAddressNumber(char *out, int number, const QString &format)
{
    enum { TextBytes = 12 };  // 11 octal digits and the NUL

    out[0] = '\0';
    if (format.startsWith(QLatin1Char('D')))
        std::snprintf(out, TextBytes, "%u", unsigned(number));
    else if (format.startsWith(QLatin1Char('H')))
        std::snprintf(out, TextBytes, "%x", unsigned(number));
    else if (format.startsWith(QLatin1Char('O')))
        std::snprintf(out, TextBytes, "%o", unsigned(number));
}

quint32 getRegAddressWeight(int stationNo, const QString &regName, int number)
{
    return addressWeight(stationNo, int(driver.regNameList.indexOf(regName)), number);
}

quint32 addressWeight(int stationNo, int regNumber, int number)
{
    // Types lie 65535 apart, not 65536: hosts may rely on the order this gives.
    const quint32 step = 65535;
    return (quint32(stationNo) * RegisterTypeCount + quint32(regNumber)) * step + quint32(number);
}
