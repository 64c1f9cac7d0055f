// What the driver says of itself: name, version, default line, register types.
#pragma once

#include "host/driver/driver_library.h"

#include <QtCore/QVector>

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

/** Asks the driver. Throws Failure when its parameter list has too few parts. */
Identity identify(const Driver &driver);

}  // namespace host
