// tolvane-host write: values to addresses, each with what came of it.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/connection.h"
#include "host/failure.h"
#include "host/tag_text.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QTextStream>

#include <limits>

namespace host {

namespace {

struct Assignment
{
    Tag tag;
    QVector<int> units;
};

// The value stands behind the last "=": a name may stand before the first.
QVector<Assignment> parseAssignments(const Connection &connection, const QStringList &arguments)
{
    QVector<Assignment> assignments;
    for (int i = 0; i < int(arguments.size()); ++i) {
        const QString &argument = arguments[i];
        const int equals = int(argument.lastIndexOf(QLatin1Char('=')));
        const QString target = argument.left(equals);
        if (equals < 1 || !target.contains(QLatin1Char(':')))
            throw Failure(
                QStringLiteral("argument %1: \"%2\": expected ADDRESS=VALUE, such as D_W:100=5")
                    .arg(i + 1)
                    .arg(argument),
                BadInput);
        const int nameEnd = int(target.indexOf(QLatin1Char('=')));
        const Tag tag = parseTag(connection.driver(), connection.identity(),
                                 target.left(qMax(0, nameEnd)), target.mid(nameEnd + 1),
                                 connection.stationNo(), QStringLiteral("argument %1").arg(i + 1));
        assignments.append({tag, parseValues(tag, argument.mid(equals + 1))});
    }
    return assignments;
}

}  // namespace

int writeCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        QStringLiteral("write"),
        QStringLiteral("Writes values and waits until the controller has acknowledged each.\n"
                       "Exit status 1 when the driver gave one up."));
    commandLine.addPositionalArgument(
        QStringLiteral("assignments"),
        QStringLiteral("Such as D_W:100=5, M_bit:20.5=1, D_W:100x3=1,2,3 or D_W:200:float=1.5."),
        QStringLiteral("ADDRESS=VALUE..."));
    addConnectionOptions(commandLine);
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print a JSON array, an object a tag."));
    commandLine.addOption(json);
    commandLine.read(arguments, std::numeric_limits<int>::max());
    const QStringList given = commandLine.positionalArguments().mid(1);
    if (given.isEmpty())
        throw Failure(QStringLiteral("nothing to write; expected ADDRESS=VALUE..."), BadInput);

    Connection connection(commandLine);
    const QVector<Assignment> assignments = parseAssignments(connection, given);
    QVector<Tag> tags;
    for (const Assignment &assignment : assignments)
        tags.append(assignment.tag);
    const TagColumns columns(connection.driver(), tags);
    const bool asJson = commandLine.isSet(json);
    connection.open(Purpose::Writing);

    QTextStream out(stdout);
    QJsonArray array;
    int failed = 0;
    for (const Assignment &assignment : assignments) {
        const Tag &tag = assignment.tag;
        connection.session().write(tag.point, assignment.units);
        const QStringList errors = connection.finish();
        failed += errors.isEmpty() ? 0 : 1;
        const QStringList values = formatValues(tag, assignment.units);
        QJsonObject object = tagObject(connection.driver(), tag);
        object.insert(QStringLiteral("values"), valueArray(values));
        object.insert(QStringLiteral("acknowledged"), errors.isEmpty());
        if (!errors.isEmpty())
            object.insert(QStringLiteral("error"), errors.first());
        array.append(object);
        if (!asJson)
            out << columns.text(tag) << " = " << values.join(QLatin1String(", ")) << "  "
                << (errors.isEmpty() ? QStringLiteral("acknowledged")
                                     : QLatin1String("FAILED: ") + errors.first())
                << '\n'
                << Qt::flush;
    }
    if (asJson)
        out << QJsonDocument(array).toJson();
    return failed == 0 && !connection.traceFailed() ? AllRight : SomethingFailed;
}

}  // namespace host
