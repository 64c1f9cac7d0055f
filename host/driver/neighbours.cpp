// Looks for the files that belong to this program.
#include "host/driver/neighbours.h"

#include "host/output/failure.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

namespace host {

namespace {

QString findBeside(const QString &what, const QStringList &places)
{
    const QDir here(QCoreApplication::applicationDirPath());
    for (const QString &place : places)
        if (QFileInfo::exists(here.filePath(place)))
            return QDir::cleanPath(here.filePath(place));
    throw Failure(
        "cannot find %1 in %2 (looked for %3)"_s.arg(what, here.path(), places.join(", "_s)),
        BadInput);
}

}  // namespace

QString findDriver()
{
    return findBeside("the driver library"_s,
                      {"libtolvane_link.so"_s,         // unpacked together
                       "../lib/libtolvane_link.so"_s,  // build folder
                       QStringLiteral("../" TOLVANE_LIBDIR "/libtolvane_link.so.2")});  // installed
}

QString findController()
{
    return findBeside("the simulated controller"_s, {"tolvane-plc"_s, "../plc/tolvane-plc"_s});
}

}  // namespace host
