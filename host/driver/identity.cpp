// Asks the driver for its identity and register types.
#include "host/driver/identity.h"

#include "host/output/failure.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

enum ParameterField { SerialField = 1, NetworkField = 7, NameField = 9 };
enum DescriptionField { Pattern, First, Last, Width, Access, DescriptionFields };
enum RegisterKind { BitTypes = 0, WordTypes = 1 };

RegisterType describe(const Driver &driver, const QString &name, bool isBit)
{
    QStringList description;
    driver.getRegDiscription(name, description);
    if (description.size() != DescriptionFields)
        throw Failure("the driver lists %1 but does not describe it"_s.arg(name));
    RegisterType type;
    type.name = name;
    type.pattern = description[Pattern];
    type.firstAddress = description[First];
    type.lastAddress = description[Last];
    const QString access = description[Access];
    type.access = QLatin1String(access == "0"_s   ? "read"
                                : access == "2"_s ? "write"
                                                  : "read and write");
    type.isBit = isBit;
    return type;
}

}  // namespace

const RegisterType *Identity::type(const QString &typeName) const
{
    const auto found =
        std::find_if(types.cbegin(), types.cend(),
                     [&](const RegisterType &candidate) { return candidate.name == typeName; });
    return found == types.cend() ? nullptr : &*found;
}

Identity identify(const Driver &driver)
{
    QString parameters;
    driver.getDriverParameter(parameters);
    const QStringList fields = parameters.split(QLatin1Char(','));
    if (fields.size() <= NameField)
        throw Failure("the driver's parameters \"%1\" are too few"_s.arg(parameters));

    Identity identity;
    identity.name = fields[NameField];
    identity.version = driver.getVersion();
    identity.serialLine = fields.mid(SerialField, 4).join(QLatin1Char(','));
    identity.networkLine = fields.mid(NetworkField, 2).join(QLatin1Char(','));
    for (const RegisterKind kind : {WordTypes, BitTypes}) {
        QStringList names;
        driver.getRegListByType(kind, names);
        for (const QString &name : std::as_const(names))
            identity.types.append(describe(driver, name, kind == BitTypes));
    }
    return identity;
}

}  // namespace host
