// The driver as the host reaches it: the loaded library's exports as typed functions.
#pragma once

#include "lib/host_interface.h"

/** Every export: its name in Driver, and its name in the library. */
#define TOLVANE_FOR_EACH_EXPORT(EXPORT)                                 \
    EXPORT(getProtocolType, intf_getProtocolType)                       \
    EXPORT(getDriverParameter, intf_getDriverParameter)                 \
    EXPORT(getDriverPropertyPage, intf_getDriverPropertyPage)           \
    EXPORT(setDriverPropertyPage, intf_SetDriverPropertyPage)           \
    EXPORT(getVersion, intf_getVersion)                                 \
    EXPORT(getRegListByType, intf_getRegListByType)                     \
    EXPORT(setAddrValueChangeCallBack, intf_setAddrValueChangeCallBack) \
    EXPORT(initProperty, intf_initProperty)                             \
    EXPORT(checkAddrValidity, intf_checkAddrValidity)                   \
    EXPORT(checkAddr, intf_checkAddr)                                   \
    EXPORT(getRegDiscription, intf_getRegDiscription)                   \
    EXPORT(multiCopy, intf_multiCopy)                                   \
    EXPORT(addrMerge, intf_addrMerge)                                   \
    EXPORT(addConditionRead, intf_addConditionRead)                     \
    EXPORT(setRcpAddress, intf_setRcpAddress)                           \
    EXPORT(getData, intf_getData)                                       \
    EXPORT(setData, intf_setData)                                       \
    EXPORT(getSendFrame, intf_getSendFrame)                             \
    EXPORT(dealRcvFrame, intf_dealRcvFrame)

namespace host {

/** The exports of a loaded driver library, each with the type that the interface declares. */
struct Driver
{
#define DECLARE_MEMBER(member, symbol) decltype(&symbol) member = nullptr;
    TOLVANE_FOR_EACH_EXPORT(DECLARE_MEMBER)
#undef DECLARE_MEMBER
};

/**
 * Loads the library and resolves every export. It stays loaded until the program ends, so its
 * functions and texts remain valid. Throws Failure (bad input) when the file is no library that
 * can be loaded here or lacks an export; the message names both.
 */
Driver loadDriver(const QString &path);

}  // namespace host
