// tolvane-host recipe: many values at once, from the controller to a file or the other way.
#include "host/commands/commands.h"
#include "host/output/failure.h"
#include "host/output/output_file.h"
#include "host/tags/recipe_file.h"
#include "host/tags/recipe_transfer.h"
#include "host/tags/tag_reader.h"
#include "host/tags/tag_text.h"

#include <QtCore/QFileInfo>

namespace host {

namespace {

// What is to be read: the file's rows, or what is asked for, beside those or in their places.
QVector<int> rowsToPull(const Connection &connection, const QString &path,
                        const QVector<TagText> &asked, Recipe &recipe)
{
    const QFileInfo file(path);
    if (asked.isEmpty() || (path != "-"_s && file.isFile() && file.size() > 0))
        recipe = readRecipeFile(connection.driver(), path);
    QVector<int> rows;
    for (TagText text : asked) {
        text.scaling = Form();  // a recipe holds what the controller holds
        const Tag tag = parseTag(connection.driver(), text);
        rows.append(recipe.rowOf(tag, text.address));
    }
    for (int row = 0; asked.isEmpty() && row < int(recipe.rows.size()); ++row)
        rows.append(row);
    return rows;
}

int pull(Connection &connection, const QString &path, const QVector<TagText> &asked, bool asJson)
{
    Recipe recipe;
    const QVector<int> rows = rowsToPull(connection, path, asked, recipe);
    if (rows.isEmpty())
        throw Failure("there is no address in %1"_s.arg(path), BadInput);
    const RecipeTransfer pushable(connection, recipe.tags());  // throws where a push would
    QVector<Tag> tags;
    for (const int row : rows)
        tags.append(recipe.rows[row].tag);
    const QVector<TagReading> readings = readTags(connection, tags);
    OutputFile out("-"_s, FileKind());
    for (int i = 0; asJson && i < int(tags.size()); ++i)
        out.write(jsonLine(readingObject(connection, tags[i], readings[i])));
    for (int i = 0; i < int(tags.size()); ++i) {
        if (!readings[i].error.isEmpty()) {
            tell("%1: %2; nothing was written"_s.arg(tags[i].name, readings[i].error));
            return SomethingFailed;
        }
        recipe.setValues(rows[i], readings[i].units);
    }
    if (!asJson || path != "-"_s)
        writeRecipeFile(path, recipe);
    return connection.traceFailed() ? SomethingFailed : AllRight;
}

int push(Connection &connection, const QString &path, bool asJson)
{
    const Recipe recipe = readRecipeFile(connection.driver(), path);
    if (recipe.rows.isEmpty())
        throw Failure("there is no address in %1"_s.arg(path), BadInput);
    QVector<QVector<int>> wanted;
    for (const RecipeRow &row : recipe.rows)
        wanted.append(parseValues(row.tag, row.values));
    RecipeTransfer transfer(connection, recipe.tags());
    QVector<QVector<int>> found(wanted.size());
    QString failure;
    try {
        connection.open(Purpose::Writing);
        transfer.write(wanted);
        found = transfer.read();
    } catch (const Failure &thrown) {
        if (!asJson || thrown.status() == BadInput)
            throw;
        failure = thrown.text();
        tell(failure);
    }

    OutputFile out("-"_s, FileKind());
    int differing = 0;
    for (int i = 0; i < int(wanted.size()); ++i) {
        const Tag &tag = recipe.rows[i].tag;
        const QString difference = differenceText(tag, wanted[i], {found[i], failure});
        const bool alike = difference.isEmpty();
        differing += alike ? 0 : 1;
        if (asJson) {
            QJsonObject object = readingObject(connection, tag, {found[i], failure});
            object.insert("wanted"_s, valueArray(formatValues(tag, wanted[i])));
            object.insert("alike"_s, alike);
            out.write(jsonLine(object));
        }
        if (!asJson && !alike)
            out.write(difference + QLatin1Char('\n'));
    }
    if (!asJson)
        out.write(
            "%1 of %2 addresses written and read back alike\n"_s.arg(wanted.size() - differing)
                .arg(wanted.size()));
    return differing == 0 && !connection.traceFailed() ? AllRight : SomethingFailed;
}

}  // namespace

int recipeCommand(const CommandLine &commandLine)
{
    const QStringList given = commandLine.given();
    const QString direction = given.value(0);
    const QString path = given.value(1);
    const QStringList addresses = given.mid(2);
    const bool isPush = direction == "push"_s;
    if (!isPush && direction != "pull"_s)
        throw Failure("recipe %1: expected pull or push"_s.arg(quoted(direction)), BadInput);
    if (path.isEmpty())
        throw Failure("no recipe file given; expected %1 FILE"_s.arg(direction), BadInput);
    const QStringList unasked = addresses + commandLine.tagFiles();
    if (isPush && !unasked.isEmpty())
        throw Failure(
            "unexpected %1: push takes its addresses from the file"_s.arg(quoted(unasked.first())),
            BadInput);
    if (!isPush && path == "-"_s && unasked.isEmpty())
        throw Failure("nothing to pull; expected ADDRESS... or --tags FILE"_s, BadInput);
    Connection connection(commandLine);
    return isPush ? push(connection, path, commandLine.asJson())
                  : pull(connection, path, collectTags(addresses, commandLine.tagFiles()),
                         commandLine.asJson());
}

}  // namespace host
