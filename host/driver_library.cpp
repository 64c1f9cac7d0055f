// Loads the driver library and resolves its exports.
#include "host/driver_library.h"

#include "host/failure.h"

#include <QtCore/QLibrary>

namespace host {

namespace {

template <typename Function>
void resolve(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    if (!function)
        throw Failure(QStringLiteral("%1 is no driver library: it does not export %2")
                          .arg(library.fileName(), QLatin1String(name)),
                      BadInput);
}

}  // namespace

Driver loadDriver(const QString &path)
{
    QLibrary library(path);
    // Every symbol must be there now, not fail in the middle of an exchange.
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    if (!library.load())
        throw Failure(QStringLiteral("cannot load the driver: %1").arg(library.errorString()),
                      BadInput);

    Driver driver;
    resolve(library, "intf_getProtocolType", driver.getProtocolType);
    resolve(library, "intf_getDriverParameter", driver.getDriverParameter);
    resolve(library, "intf_getDriverPropertyPage", driver.getDriverPropertyPage);
    resolve(library, "intf_SetDriverPropertyPage", driver.setDriverPropertyPage);
    resolve(library, "intf_getVersion", driver.getVersion);
    resolve(library, "intf_getRegListByType", driver.getRegListByType);
    resolve(library, "intf_setAddrValueChangeCallBack", driver.setAddrValueChangeCallBack);
    resolve(library, "intf_initProperty", driver.initProperty);
    resolve(library, "intf_checkAddrValidity", driver.checkAddrValidity);
    resolve(library, "intf_checkAddr", driver.checkAddr);
    resolve(library, "intf_getRegDiscription", driver.getRegDiscription);
    resolve(library, "intf_multiCopy", driver.multiCopy);
    resolve(library, "intf_addrMerge", driver.addrMerge);
    resolve(library, "intf_addConditionRead", driver.addConditionRead);
    resolve(library, "intf_setRcpAddress", driver.setRcpAddress);
    resolve(library, "intf_getData", driver.getData);
    resolve(library, "intf_setData", driver.setData);
    resolve(library, "intf_getSendFrame", driver.getSendFrame);
    resolve(library, "intf_dealRcvFrame", driver.dealRcvFrame);
    return driver;
}

}  // namespace host
