// tolvane-host info: what the driver says of itself.
#include "host/commands/commands.h"
#include "host/driver/driver_library.h"
#include "host/output/failure.h"
#include "host/output/table.h"

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
        types.append(QJsonObject{{"name"_s, type.name},
                                 {"pattern"_s, type.pattern},
                                 {"first"_s, type.firstAddress},
                                 {"last"_s, type.lastAddress},
                                 {"width"_s, width(type)},
                                 {"access"_s, type.access}});
    return {{"name"_s, identity.name},
            {"version"_s, identity.version},
            {"serial"_s, identity.serialLine},
            {"network"_s, identity.networkLine},
            {"types"_s, types}};
}

void print(const Identity &identity, const QString &path, QTextStream &out)
{
    Table head({{Table::Left, 8, 0}, {}});
    head.add({"driver"_s, identity.name + QLatin1Char(' ') + identity.version});
    head.add({"library"_s, path});
    head.add({"serial"_s, identity.serialLine + " by default"_s});
    head.add({"network"_s, identity.networkLine + " by default"_s});
    head.print(out);
    out << '\n';
    Table types({{Table::Left, 8, 0}, {}, {Table::Right, 6}, {Table::Right, 10}, {}, {}});
    types.add("type,pattern,first,last,width,access"_s.split(QLatin1Char(',')));
    for (const RegisterType &type : identity.types)
        types.add({type.name, type.pattern, type.firstAddress, type.lastAddress, width(type),
                   type.access});
    types.print(out);
}

}  // namespace

int infoCommand(const CommandLine &commandLine)
{
    const QString path = commandLine.driverPath();
    const Identity identity = loadDriver(path).identity;
    QTextStream out(stdout);
    if (commandLine.asJson())
        printJson(QJsonDocument(toJson(identity)));
    else
        print(identity, path, out);
    return AllRight;
}

}  // namespace host
