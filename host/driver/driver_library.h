// The driver as the host reaches it: the loaded library's exports as typed functions, and what it
// says of itself.
#pragma once

#include "lib/host_interface.h"

#include <QtCore/QVector>

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

struct RegisterType
{
    QString name;          ///< such as "D_W" or "M_bit"
    QString pattern;       ///< one letter a digit, such as "DDDD.DD"
    QString firstAddress;  ///< as the user writes it
    QString lastAddress;   ///< as the user writes it
    QString access;        ///< "read", "read and write" or "write"
    bool isBit = false;    ///< a value is one bit, not one word
};

/** What the driver says of itself. */
struct Identity
{
    QString name;
    QString version;
    QString serialLine;           ///< default serial settings, such as "115200,8,NONE,1"
    QString networkLine;          ///< default network address and port, comma-separated
    QVector<RegisterType> types;  ///< word types first

    /** Finds a type by its exact name; null when there is none. */
    const RegisterType *type(const QString &name) const;
};

/** A loaded driver: its exports, each with the type that the interface declares. */
struct Driver
{
#define DECLARE_MEMBER(member, symbol) decltype(&symbol) member = nullptr;
    TOLVANE_FOR_EACH_EXPORT(DECLARE_MEMBER)
#undef DECLARE_MEMBER

    Identity identity;
    int stationNo = 1;  ///< of addresses that name none
};

/**
 * Loads the library, resolves every export and asks for the identity. It stays loaded until the
 * program ends, so its functions and texts remain valid. Throws Failure (bad input) when the file
 * is no library that can be loaded here or lacks an export; the message names both.
 */
Driver loadDriver(const QString &path);

}  // namespace host
