// Looks for the files that belong to this program.
#include "host/neighbours.h"

#include "host/failure.h"

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
    throw Failure(QStringLiteral("cannot find %1 in %2 (looked for %3)")
                      .arg(what, here.path(), places.join(QLatin1String(", "))),
                  BadInput);
}

}  // namespace

QString findDriver()
{
    return findBeside(QStringLiteral("the driver library"),
                      {QStringLiteral("libtolvane_link.so"),         // unpacked together
                       QStringLiteral("../lib/libtolvane_link.so"),  // build folder
                       QStringLiteral("../" TOLVANE_LIBDIR "/libtolvane_link.so.2")});  // installed
}

QString findController()
{
    return findBeside(QStringLiteral("the simulated controller"),
                      {QStringLiteral("tolvane-plc"), QStringLiteral("../plc/tolvane-plc")});
}

}  // namespace host
