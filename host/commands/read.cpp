// tolvane-host read: each address once.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/connection.h"
#include "host/failure.h"
#include "host/tag_reader.h"
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
    commandLine.addTagFileOption();
    addConnectionOptions(commandLine);
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print a JSON array, an object a tag."));
    commandLine.addOption(json);
    commandLine.read(arguments, std::numeric_limits<int>::max());
    const QStringList addresses = commandLine.positionalArguments().mid(1);
    if (addresses.isEmpty() && commandLine.tagFiles().isEmpty())
        throw Failure(QStringLiteral("nothing to read; expected ADDRESS... or --tags FILE"),
                      BadInput);

    Connection connection(commandLine);
    const Driver &driver = connection.driver();
    const QVector<Tag> tags = parseTags(driver, connection.identity(), addresses,
                                        connection.stationNo(), commandLine.tagFiles());
    const TagColumns columns(driver, tags);
    const bool asJson = commandLine.isSet(json);
    connection.open(Purpose::Reading);

    QTextStream out(stdout);
    QTextStream err(stderr);
    QJsonArray array;
    int failed = 0;
    const QVector<TagReading> readings = readTags(connection, tags);
    for (int i = 0; i < int(tags.size()); ++i) {
        const Tag &tag = tags[i];
        const TagReading &reading = readings[i];
        QJsonObject object = tagObject(driver, tag);
        if (!reading.error.isEmpty()) {
            ++failed;
            err << "tolvane-host: " << tag.name << ": " << reading.error << '\n' << Qt::flush;
            object.insert(QStringLiteral("error"), reading.error);
        } else {
            const QStringList values = formatValues(tag, reading.units);
            object.insert(QStringLiteral("values"), valueArray(values));
            if (!asJson)
                out << columns.text(tag) << "  " << valuesText(tag, values) << '\n' << Qt::flush;
        }
        array.append(object);
    }
    if (asJson)
        out << QJsonDocument(array).toJson();
    return failed == 0 && !connection.traceFailed() ? AllRight : SomethingFailed;
}

}  // namespace host
