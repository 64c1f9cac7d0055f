// Loads the driver library, resolves its exports and asks it for its register types.
#include "host/driver/driver_library.h"

#include "host/output/failure.h"

#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>

#include <algorithm>
#include <utility>

namespace host {

namespace {

template <typename Function>
void resolve(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    if (!function)
        throw Failure("%1 is no driver library: it does not export %2"_s.arg(library.fileName(),
                                                                             QLatin1String(name)),
                      BadInput);
}

enum ParameterField { SerialField = 1, NetworkField = 7, NameField = 9 };
enum DescriptionField { Pattern, First, Last, Width, Access, DescriptionFields };
enum RegisterKind { BitTypes = 0, WordTypes = 1 };

RegisterType describe(const Driver &driver, const QString &name, bool isBit)
{
    QStringList description;
    driver.getRegDiscription(name, description);
    if (description.size() != DescriptionFields)
        throw Failure("the driver lists %1 but does not describe it"_s.arg(name));
    const QString access = description[Access] == "0"_s   ? "read"_s
                           : description[Access] == "2"_s ? "write"_s
                                                          : "read and write"_s;
    return {name, description[Pattern], description[First], description[Last], access, isBit};
}

Identity identify(const Driver &driver)
{
    QString parameters;
    driver.getDriverParameter(parameters);
    const QStringList fields = parameters.split(QLatin1Char(','));
    if (fields.size() <= NameField)
        throw Failure("the driver's parameters \"%1\" are too few"_s.arg(parameters));

    Identity identity{fields[NameField],
                      driver.getVersion(),
                      fields.mid(SerialField, 4).join(QLatin1Char(',')),
                      fields.mid(NetworkField, 2).join(QLatin1Char(',')),
                      {}};
    for (const RegisterKind kind : {WordTypes, BitTypes}) {
        QStringList names;
        driver.getRegListByType(kind, names);
        for (const QString &name : std::as_const(names))
            identity.types.append(describe(driver, name, kind == BitTypes));
    }
    return identity;
}

}  // namespace

const RegisterType *Identity::type(const QString &typeName) const
{
    const auto found =
        std::find_if(types.cbegin(), types.cend(),
                     [&](const RegisterType &candidate) { return candidate.name == typeName; });
    return found == types.cend() ? nullptr : &*found;
}

Driver loadDriver(const QString &path)
{
    if (path.contains(QLatin1Char('/')) && !QFileInfo::exists(path))
        throw Failure("cannot load the driver: there is no file %1"_s.arg(path), BadInput);
    QLibrary library(path);
    // Every symbol must be there now, not fail in the middle of an exchange.
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    if (!library.load())
        throw Failure("cannot load the driver: %1"_s.arg(library.errorString()), BadInput);

    Driver driver;
#define RESOLVE_MEMBER(member, symbol) resolve(library, #symbol, driver.member);
    TOLVANE_FOR_EACH_EXPORT(RESOLVE_MEMBER)
#undef RESOLVE_MEMBER
    driver.identity = identify(driver);
    return driver;
}

}  // namespace host
