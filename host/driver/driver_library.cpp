// Loads the driver library and resolves its exports.
#include "host/driver/driver_library.h"

#include "host/output/failure.h"

#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>

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

}  // namespace

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
    return driver;
}

}  // namespace host
