// tolvane-host read: each address once.
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/tags/tag_reader.h"
#include "host/tags/tag_text.h"

#include <QtCore/QTextStream>

namespace host {

int readCommand(const CommandLine &commandLine)
{
    Connection connection(commandLine);
    const QVector<Tag> tags =
        parseTags(connection.driver(), commandLine.given(), commandLine.tagFiles());
    const QStringList columns = tagColumns(connection.driver(), tags);
    const QVector<TagReading> readings = readTags(connection, tags);

    QTextStream out(stdout);
    QJsonArray array;
    int failed = 0;
    for (int i = 0; i < int(tags.size()); ++i) {
        const Tag &tag = tags[i];
        const QString &error = readings[i].error;
        array.append(readingObject(connection, tag, readings[i]));
        if (!error.isEmpty()) {
            ++failed;
            tell("%1: %2"_s.arg(tag.name, error));
        } else if (!commandLine.asJson()) {
            out << columns[i] << "  " << valuesText(tag, formatValues(tag, readings[i].units))
                << '\n'
                << Qt::flush;
        }
    }
    if (commandLine.asJson())
        printJson(QJsonDocument(array));
    return failed == 0 && !connection.traceFailed() ? AllRight : SomethingFailed;
}

}  // namespace host
