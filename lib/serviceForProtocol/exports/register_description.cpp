// Export: what a register type's addresses look like.
#include <QtCore/QStringList>

#include "../../protocol.h"

namespace {

const char *widthCode(const QString &valueBits)
{
    switch (valueBits.toInt()) {
        case 1:
            return "0";
        case 32:
            return "2";
        default:
            return "1";
    }
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
