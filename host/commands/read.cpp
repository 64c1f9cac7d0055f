// tolvane-host read: each address once.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/tags/tag_reader.h"
#include "host/tags/tag_text.h"

#include <QtCore/QTextStream>

#include <limits>

namespace host {

namespace {

int read(const CommandLine &commandLine)
{
    const QStringList addresses = commandLine.positionalArguments().mid(1);
    if (addresses.isEmpty() && commandLine.tagFiles().isEmpty())
        throw Failure("nothing to read; expected ADDRESS... or --tags FILE"_s, BadInput);
    Connection connection(commandLine);
    const QVector<Tag> tags = parseTags(connection.driver(), connection.identity(), addresses,
                                        connection.stationNo(), commandLine.tagFiles());
    const TagColumns columns(connection.driver(), tags);
    const QVector<TagReading> readings = readTags(connection, tags);

    QTextStream out(stdout);
    QTextStream err(stderr);
    QJsonArray array;
    int failed = 0;
    for (int i = 0; i < int(tags.size()); ++i) {
        const Tag &tag = tags[i];
        const QString &error = readings[i].error;
        array.append(readingObject(connection, tag, readings[i]));
        if (!error.isEmpty()) {
            ++failed;
            err << "tolvane-host: " << tag.name << ": " << error << '\n' << Qt::flush;
        } else if (!commandLine.asJson()) {
            out << columns.text(tag) << "  "
                << valuesText(tag, formatValues(tag, readings[i].units)) << '\n'
                << Qt::flush;
        }
    }
    if (commandLine.asJson())
        printJson(QJsonDocument(array));
    return failed == 0 && !connection.traceFailed() ? AllRight : SomethingFailed;
}

}  // namespace

int readCommand(const QStringList &arguments)
{
    CommandLine commandLine("read"_s,
                            "Reads each address once. Exit status 1 when one has no good value."_s);
    commandLine.addPositionalArgument(
        "addresses"_s, "Such as D_W:100x10, level=D_W:100:float, M_bit:20.5, or a tag file."_s,
        "ADDRESS..."_s);
    commandLine.addTagFileOption();
    addConnectionOptions(commandLine);
    commandLine.addJsonOption("Print a JSON array, an object a tag.");
    commandLine.read(arguments, std::numeric_limits<int>::max());
    return read(commandLine);
}

}  // namespace host
