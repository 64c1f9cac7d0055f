// tolvane-host info: what the driver says of itself.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/failure.h"
#include "host/identity.h"
#include "host/table.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTextStream>

namespace host {

namespace {

QString width(const RegisterType &type)
{
    return QLatin1String(type.isBit ? "bit" : "word");
}

QJsonObject toJson(const Identity &identity)
{
    QJsonArray types;
    for (const RegisterType &type : identity.types)
        types.append(QJsonObject{{QStringLiteral("name"), type.name},
                                 {QStringLiteral("pattern"), type.pattern},
                                 {QStringLiteral("first"), type.firstAddress},
                                 {QStringLiteral("last"), type.lastAddress},
                                 {QStringLiteral("width"), width(type)},
                                 {QStringLiteral("access"), type.access}});
    return {{QStringLiteral("name"), identity.name},
            {QStringLiteral("version"), identity.version},
            {QStringLiteral("serial"), identity.serialLine},
            {QStringLiteral("network"), identity.networkLine},
            {QStringLiteral("types"), types}};
}

void print(const Identity &identity, const QString &path, QTextStream &out)
{
    Table head({{Table::Left, 8, 0}, {}});
    head.add({QStringLiteral("driver"), identity.name + QLatin1Char(' ') + identity.version});
    head.add({QStringLiteral("library"), path});
    head.add({QStringLiteral("serial"), identity.serialLine + QLatin1String(" by default")});
    head.add({QStringLiteral("network"), identity.networkLine + QLatin1String(" by default")});
    head.print(out);
    out << '\n';
    Table types({{Table::Left, 8, 0}, {}, {Table::Right, 6}, {Table::Right, 10}, {}, {}});
    types.add(QString::fromLatin1("type,pattern,first,last,width,access").split(QLatin1Char(',')));
    for (const RegisterType &type : identity.types)
        types.add({type.name, type.pattern, type.firstAddress, type.lastAddress, width(type),
                   type.access});
    types.print(out);
}

}  // namespace

int infoCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        QStringLiteral("info"),
        QStringLiteral("The driver's name and version, its default line, and its register types.\n"
                       "A pattern has a letter for each digit: D is a decimal one."));
    commandLine.addJsonOption("Print a JSON object.");
    commandLine.read(arguments);

    const QString path = commandLine.driverPath();
    const Identity identity = identify(loadDriver(path));
    QTextStream out(stdout);
    if (commandLine.asJson())
        printJson(QJsonDocument(toJson(identity)));
    else
        print(identity, path, out);
    return AllRight;
}

}  // namespace host
