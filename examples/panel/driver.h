// The driver library, loaded when the panel starts: the exports that a panel needs.
#pragma once

#include <QtCore/QLibrary>

#include <host_interface.h>

#include <cstdlib>

// Declared with the header's own type: a call that does not fit it does not compile.
#define PANEL_EXPORT(name) \
    decltype(&intf_##name) name = reinterpret_cast<decltype(&intf_##name)>(find("intf_" #name))

class Driver
{
    QLibrary m_library;

    QFunctionPointer find(const char *name)
    {
        const QFunctionPointer function = m_library.resolve(name);
        if (!function) {
            qCritical("%s", qPrintable(m_library.errorString()));
            std::exit(2);
        }
        return function;
    }

public:
    /**
     * library: "tolvane_link" where it is installed, or a path that ends so. The 2 is the number of
     * the binary interface: every package has libtolvane_link.so.2. Throws when it cannot be
     * loaded; stays loaded until the program ends.
     */
    explicit Driver(const QString &library) : m_library(library, 2) {}

    PANEL_EXPORT(setAddrValueChangeCallBack);
    PANEL_EXPORT(initProperty);
    PANEL_EXPORT(addrMerge);
    PANEL_EXPORT(addConditionRead);
    PANEL_EXPORT(setRcpAddress);
    PANEL_EXPORT(getData);
    PANEL_EXPORT(setData);
    PANEL_EXPORT(getSendFrame);
    PANEL_EXPORT(dealRcvFrame);
};
