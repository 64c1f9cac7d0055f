// tolvane-host write: values to addresses, each with what came of it.
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/csv.h"
#include "host/output/failure.h"
#include "host/tags/tag_reader.h"
#include "host/tags/tag_text.h"

#include <QtCore/QTextStream>

namespace host {

namespace {

const QString MayHold = "; not acknowledged; the controller may hold it"_s;

struct Assignment
{
    Tag tag;
    QVector<int> units;
};

/** A request that was to carry a part of an assignment. */
struct Piece
{
    Point block;
    QString failure;  // empty: acknowledged
};

struct Result
{
    QVector<Piece> pieces;
    QString failure;  // empty: all is acknowledged
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
                "argument %1: %2: expected ADDRESS=VALUE, such as D_W:100=5"_s.arg(i + 1).arg(
                    quoted(argument)),
                BadInput);
        const int nameEnd = int(target.indexOf(QLatin1Char('=')));
        const TagText text{target.left(qMax(0, nameEnd)), target.mid(nameEnd + 1),
                           "argument %1"_s.arg(i + 1)};
        const Tag tag = parseTag(connection.driver(), text);
        const QStringList values =
            csvFields(argument.mid(equals + 1), QLatin1Char(','), tag.name, "value");
        assignments.append({tag, parseValues(tag, values)});
    }
    return assignments;
}

QString failureOf(const Driver &driver, const QVector<Piece> &pieces, bool withStation)
{
    QStringList texts;
    bool failed = false;
    for (const Piece &piece : pieces) {
        failed = failed || !piece.failure.isEmpty();
        texts += pieces.size() == 1
                     ? piece.failure
                     : pointText(driver, piece.block, withStation) +
                           (piece.failure.isEmpty() ? " acknowledged"_s : ": "_s + piece.failure);
    }
    return failed ? texts.join("; "_s) : QString();
}

Result carry(Connection &connection, const Assignment &assignment)
{
    Result result;
    connection.observer = [&](const Exchange &exchange) {
        // Several bits are written into words that were read for it: that read writes nothing.
        const bool acknowledged =
            exchange.outcome == Outcome::Good && exchange.frame.readCount == 0;
        if (acknowledged)
            result.pieces.append({blockOf(exchange.frame.var), QString()});
        else if (exchange.outcome == Outcome::GivenUp)
            result.pieces.append({blockOf(exchange.frame.var),
                                  faultsText(exchange.tries) +
                                      (exchange.frame.readCount > 0 ? QString() : MayHold)});
    };
    connection.beginStep();
    connection.session().write(assignment.tag.point, assignment.units);
    QString lost;
    try {
        if (connection.finish().isEmpty() && !connection.prove(assignment.tag.point))
            for (Piece &piece : result.pieces)
                piece.failure = "out of step" + MayHold;
    } catch (const Failure &failure) {
        lost = failure.text();
    }
    connection.observer = nullptr;
    result.failure = failureOf(connection.driver(), result.pieces, assignment.tag.stationNamed);
    if (!lost.isEmpty())
        result.failure += result.pieces.isEmpty() ? lost : "; "_s + lost;
    return result;
}

QJsonObject objectOf(const Driver &driver, const Assignment &assignment, const Result &result)
{
    QJsonObject object = tagObject(driver, assignment.tag);
    object.insert("values"_s, valueArray(formatValues(assignment.tag, assignment.units)));
    object.insert("acknowledged"_s, result.failure.isEmpty());
    if (!result.failure.isEmpty())
        object.insert("reason"_s, result.failure);
    QJsonArray blocks;
    for (const Piece &piece : result.pieces) {
        QJsonObject block = blockObject(driver, piece.block, assignment.tag.stationNamed);
        block.insert("acknowledged"_s, piece.failure.isEmpty());
        if (!piece.failure.isEmpty())
            block.insert("reason"_s, piece.failure);
        blocks.append(block);
    }
    object.insert("blocks"_s, blocks);
    return object;
}

}  // namespace

int writeCommand(const CommandLine &commandLine)
{
    Connection connection(commandLine);
    const Driver &driver = connection.driver();
    const QVector<Assignment> assignments = parseAssignments(connection, commandLine.given());
    QVector<Tag> tags;
    for (const Assignment &assignment : assignments)
        tags.append(assignment.tag);
    const QStringList columns = tagColumns(driver, tags);
    const QString closed = connection.tryToOpen(Purpose::Writing);
    if (!closed.isEmpty() && !commandLine.asJson())
        throw Failure(closed);

    QTextStream out(stdout);
    QJsonArray array;
    int failed = 0;
    for (int i = 0; i < int(tags.size()); ++i) {
        const Assignment &assignment = assignments[i];
        const Result result = !closed.isEmpty() ? Result{{}, closed}
                              : connection.line().isOpen()
                                  ? carry(connection, assignment)
                                  : Result{{}, "not sent: %1"_s.arg(connection.line().errorText())};
        failed += result.failure.isEmpty() ? 0 : 1;
        array.append(objectOf(driver, assignment, result));
        if (commandLine.asJson()) {
            if (!result.failure.isEmpty())
                tell("%1: %2"_s.arg(assignment.tag.name, result.failure));
            continue;
        }
        out << columns[i] << " = " << formatValues(assignment.tag, assignment.units).join(", "_s)
            << "  " << (result.failure.isEmpty() ? "acknowledged"_s : "FAILED: "_s + result.failure)
            << '\n'
            << Qt::flush;
    }
    const QVector<TagReading> held = commandLine.isSet("verify"_s) && closed.isEmpty()
                                         ? readTags(connection, tags)
                                         : QVector<TagReading>();
    for (int i = 0; i < int(held.size()); ++i) {
        const QString difference = differenceText(tags[i], assignments[i].units, held[i]);
        failed += difference.isEmpty() ? 0 : 1;
        QJsonObject object = array[i].toObject();
        object.insert("held"_s, valueArray(formatValues(tags[i], held[i].units)));
        object.insert("alike"_s, difference.isEmpty());
        array[i] = object;
        if (!difference.isEmpty())
            tell(difference);
    }
    if (!commandLine.asJson() && !held.isEmpty() && failed == 0)
        out << "all read back alike\n";
    if (commandLine.asJson())
        printJson(QJsonDocument(array));
    return failed == 0 && !connection.traceFailed() ? AllRight : SomethingFailed;
}

}  // namespace host
