// The driver as the host reaches it: the loaded library's exports as typed functions.
#ifndef TOLVANE_HOST_DRIVER_LIBRARY_H
#define TOLVANE_HOST_DRIVER_LIBRARY_H

#include "lib/host_interface.h"

namespace host {

/** The exports of a loaded driver library, each with the type that the interface declares. */
struct Driver
{
    decltype(&intf_getProtocolType) getProtocolType = nullptr;
    decltype(&intf_getDriverParameter) getDriverParameter = nullptr;
    decltype(&intf_getDriverPropertyPage) getDriverPropertyPage = nullptr;
    decltype(&intf_SetDriverPropertyPage) setDriverPropertyPage = nullptr;
    decltype(&intf_getVersion) getVersion = nullptr;
    decltype(&intf_getRegListByType) getRegListByType = nullptr;
    decltype(&intf_setAddrValueChangeCallBack) setAddrValueChangeCallBack = nullptr;
    decltype(&intf_initProperty) initProperty = nullptr;
    decltype(&intf_checkAddrValidity) checkAddrValidity = nullptr;
    decltype(&intf_checkAddr) checkAddr = nullptr;
    decltype(&intf_getRegDiscription) getRegDiscription = nullptr;
    decltype(&intf_multiCopy) multiCopy = nullptr;
    decltype(&intf_addrMerge) addrMerge = nullptr;
    decltype(&intf_addConditionRead) addConditionRead = nullptr;
    decltype(&intf_setRcpAddress) setRcpAddress = nullptr;
    decltype(&intf_getData) getData = nullptr;
    decltype(&intf_setData) setData = nullptr;
    decltype(&intf_getSendFrame) getSendFrame = nullptr;
    decltype(&intf_dealRcvFrame) dealRcvFrame = nullptr;
};

/**
 * Loads the library and resolves every export. It stays loaded until the program ends, so its
 * functions and texts remain valid. Throws Failure (bad input) when the file is no library that
 * can be loaded here or lacks an export; the message names both.
 */
Driver loadDriver(const QString &path);

}  // namespace host

#endif
