// Exports: who the driver is.
#include <QtCore/QStringList>

#include "../../protocol.h"

void intf_getProtocolType(int *type)
{
    if (type)
        *type = 0;
}

void intf_getDriverParameter(QString &text)
{
    const QString zero = QString::number(0);
    QStringList fields;
    fields << zero << PROCOTOL_DEFALT_COM_PAR << zero << QString::number(1)
           << PROCOTOL_DEFALT_IP_PAR << PROCOTOL_NAME << QStringList(driver.regNameList);
    text = fields.join(QLatin1String(","));
}

void intf_getDriverPropertyPage(QString &text)
{
    text = PROCOTOL_PAR_HMI_SET_MODE;
}

void intf_SetDriverPropertyPage(QString page)
{
    // A copy of the characters: the host's text may lie over memory that goes away.
    driver.settings.propertyPage = QString(page.constData(), int(page.size()));
}

QString intf_getVersion()
{
    return PROCOTOL_VERSION;
}

int intf_getRegListByType(int type, QStringList &names)
{
    for (int number = 0; number < RegisterTypeCount; ++number) {
        const int bits = ADDRESS_RANGE_PRO[number].valueBits.toInt();
        if (type == 0 ? bits == 1 : bits > 1)
            names.append(REG_LIST[number]);
    }
    return type == 0 || type == 1;
}
