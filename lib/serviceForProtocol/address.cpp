// Address texts of any register type, and the key that orders read planning.
#include "address.h"

namespace {

/** The base that a letter of a pattern stands for; 0 for any other letter. */
int baseOf(QChar letter)
{
    switch (letter.toLatin1()) {
        case 'D':
            return 10;
        case 'H':
            return 16;
        case 'O':
            return 8;
        default:
            return 0;
    }
}

/** Without the allocation that QString::number() costs in every exchange. */
void appendNumber(QString &text, quint32 number, int base = 10)
{
    char digits[12];  // 11 octal digits and the NUL
    char *digit = digits + sizeof digits;
    *--digit = '\0';
    do {
        *--digit = "0123456789abcdef"[number % unsigned(base)];
        number /= quint32(base);
    } while (number != 0);
    text += QLatin1String(digit);
}

void appendSigned(QString &text, int number)
{
    if (number < 0)
        text += QLatin1Char('-');
    appendNumber(text, number < 0 ? 0 - quint32(number) : quint32(number));
}

void appendAddress(QString &text, const RegisterType &type, int number)
{
    const QString &pattern = ADDRESS_RANGE_PRO[type.number].addrFormat;
    const int base = baseOf(pattern.at(0));
    if (isMixedFormat(pattern))
        text += addr_int2str(number, REG_LIST[type.number]);
    else if (base != 0)
        appendNumber(text, quint32(number), base);
}

}  // namespace

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
    const int base = format.isEmpty() ? 0 : baseOf(format.at(format.size() - 1));
    bool ok = false;
    number = addrText.toInt(&ok, base != 0 ? base : 10);
    return ok ? 1 : -1;
}

QString addressText(const RegisterType &type, int number)
{
    QString text;
    appendAddress(text, type, number);
    return text;
}

QString getErrorInfo(const RegisterType &type, const VARIABLE &item, int replyBytes)
{
    QString text;
    if (!type.isKnown())
        return text;
    text.reserve(48);  // one allocation
    appendSigned(text, item.stationNo);
    text += QLatin1Char('#');
    text += item.regName;
    appendAddress(text, type, item.startAddr);
    text += QLatin1Char('(');
    appendSigned(text, item.count);
    text += QLatin1String(")(");
    appendSigned(text, replyBytes);
    text += QLatin1Char(')');
    return text;
}

quint32 getRegAddressWeight(int stationNo, const QString &regName, int number)
{
    return addressWeight(stationNo, int(driver.regNameList.indexOf(regName)), number);
}

quint32 addressWeight(int stationNo, int regNumber, int number)
{
    // Types lie 65535 apart, not 65536: hosts may rely on the order this gives.
    const quint32 step = 65535;
    const quint32 types = quint32(RegisterTypeCount);
    return (quint32(stationNo) * types + quint32(regNumber)) * step + quint32(number);
}
