// tolvane-host read: each address once.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/connection.h"
#include "host/failure.h"
#include "host/tag_text.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QTextStream>

#include <limits>

namespace host {

int readCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        QStringLiteral("read"),
        QStringLiteral("Reads each address once. Exit status 1 when a read was given up."));
    commandLine.addPositionalArgument(
        QStringLiteral("addresses"),
        QStringLiteral("Such as D_W:100x10, level=D_W:100:float, M_bit:20.5, or a tag file."),
        QStringLiteral("ADDRESS..."));
    addConnectionOptions(commandLine);
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print a JSON array, an object a tag."));
    commandLine.addOption(json);
    commandLine.read(arguments, std::numeric_limits<int>::max());
    const QStringList addresses = commandLine.positionalArguments().mid(1);
    if (addresses.isEmpty())
        throw Failure(QStringLiteral("nothing to read; expected ADDRESS..."), BadInput);

    Connection connection(commandLine);
    const Driver &driver = connection.driver();
    const QVector<Tag> tags =
        parseTags(driver, connection.identity(), addresses, connection.stationNo());
    const TagColumns columns(driver, tags);
    const bool asJson = commandLine.isSet(json);
    connection.open();

    QTextStream out(stdout);
    QTextStream err(stderr);
    QJsonArray array;
    int failed = 0;
    // One after the other: a failed read takes those that are queued behind it along.
    for (const Tag &tag : tags) {
        connection.session().readOnce(tag.point);
        const QStringList errors = connection.finish();
        QJsonObject object = tagObject(driver, tag);
        if (!errors.isEmpty()) {
            ++failed;
            err << "tolvane-host: " << tag.name << ": " << errors.first() << '\n' << Qt::flush;
            object.insert(QStringLiteral("error"), errors.first());
        } else {
            const QStringList values = formatValues(tag, connection.session().values(tag.point));
            object.insert(QStringLiteral("values"), valueArray(values));
            if (!asJson)
                out << columns.text(tag) << "  " << values.join(QLatin1String(", ")) << '\n'
                    << Qt::flush;
        }
        array.append(object);
    }
    if (asJson)
        out << QJsonDocument(array).toJson();
    return failed == 0 ? AllRight : SomethingFailed;
}

}  // namespace host
