// tolvane-host recipe: many values at once, from the controller to a file or the other way.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/output/failure.h"
#include "host/output/output_file.h"
#include "host/output/table.h"
#include "host/tags/recipe_file.h"
#include "host/tags/recipe_transfer.h"
#include "host/tags/tag_reader.h"
#include "host/tags/tag_text.h"

#include <QtCore/QTextStream>

#include <limits>

#include <unistd.h>

namespace host {

namespace {

constexpr int BarWidth = 40;

/** A bar over the blocks while they travel; only where somebody can see it. */
class ProgressBar
{
public:
    explicit ProgressBar(const QString &title)
        : m_title(title), m_shown(::isatty(STDERR_FILENO) == 1)
    {
    }
    ~ProgressBar()
    {
        if (m_shown)
            QTextStream(stderr) << '\n';
    }
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;

    /** To be called after each block; empty where nobody sees the bar. */
    std::function<void(int blocks, int units, int allUnits)> progress() const
    {
        if (!m_shown)
            return nullptr;
        return [title = m_title](int blocks, int units, int allUnits) {
            const int done = int(qint64(BarWidth) * qMin(units, allUnits) / allUnits);
            QTextStream(stderr) << '\r' << title << " [" << QString(done, QLatin1Char('#'))
                                << QString(BarWidth - done, QLatin1Char(' ')) << "] " << units
                                << " of " << allUnits << " in " << countText(blocks, "block");
        };
    }

private:
    QString m_title;
    bool m_shown;
};

QVector<Tag> tagsOf(const QVector<RecipeLine> &lines)
{
    QVector<Tag> tags;
    for (const RecipeLine &line : lines)
        tags.append(line.tag);
    return tags;
}

// The lines that a recipe begins with: those of its file, or what is asked for.
QVector<RecipeLine> linesToPull(Connection &connection, const QString &path,
                                const QStringList &addresses, const QStringList &tagFiles)
{
    if (addresses.isEmpty() && tagFiles.isEmpty() && path == "-"_s)
        throw Failure("nothing to pull; expected ADDRESS... or --tags FILE"_s, BadInput);
    if (addresses.isEmpty() && tagFiles.isEmpty())
        return readRecipeFile(connection.driver(), connection.identity(), path,
                              connection.stationNo());
    QVector<RecipeLine> lines;
    for (TagText text : collectTags(addresses, tagFiles)) {
        text.scaling = Form();  // a recipe holds what the controller holds
        lines.append(
            {parseTag(connection.driver(), connection.identity(), text, connection.stationNo()),
             text.address, QString()});
    }
    return lines;
}

/** Objects as lines of JSON, each on its way when it is written. */
class JsonLines
{
public:
    void write(const QJsonObject &object) { m_file.write(jsonLine(object)); }

private:
    OutputFile m_file{"-"_s, OutputFile::Anew};
};

int pull(Connection &connection, const QString &path, const QStringList &addresses,
         const QStringList &tagFiles, bool asJson)
{
    QVector<RecipeLine> lines = linesToPull(connection, path, addresses, tagFiles);
    const RecipeTransfer pushable(connection, tagsOf(lines));  // throws where a push would
    const ProgressBar bar("pull"_s);
    const QVector<TagReading> readings = readTags(connection, tagsOf(lines), bar.progress());
    JsonLines json;
    for (int i = 0; asJson && i < int(lines.size()); ++i)
        json.write(readingObject(connection, lines[i].tag, readings[i]));
    for (int i = 0; i < int(lines.size()); ++i) {
        if (!readings[i].error.isEmpty()) {
            QTextStream(stderr) << "tolvane-host: " << lines[i].address << ": " << readings[i].error
                                << "; nothing was written\n";
            return SomethingFailed;
        }
        lines[i].values = joinedValues(lines[i].tag, readings[i].units);
    }
    if (!asJson || path != "-"_s)
        writeRecipeFile(path, lines);
    return connection.traceFailed() ? SomethingFailed : AllRight;
}

QVector<QVector<int>> pushAndRead(RecipeTransfer &transfer, const QVector<QVector<int>> &values)
{
    {
        const ProgressBar bar("push"_s);
        transfer.progress = bar.progress();
        transfer.write(values);
    }
    const ProgressBar bar("check"_s);
    transfer.progress = bar.progress();
    return transfer.read();
}

int push(Connection &connection, const QString &path, bool asJson)
{
    const QVector<RecipeLine> lines =
        readRecipeFile(connection.driver(), connection.identity(), path, connection.stationNo());
    QVector<QVector<int>> wanted;
    for (const RecipeLine &line : lines)
        wanted.append(parseValues(line.tag, line.values));
    RecipeTransfer transfer(connection, tagsOf(lines));
    QVector<QVector<int>> found(lines.size());
    QString failure;
    try {
        connection.open(Purpose::Writing);
        found = pushAndRead(transfer, wanted);
    } catch (const Failure &thrown) {
        if (!asJson || thrown.status() == BadInput)
            throw;
        failure = QString::fromUtf8(thrown.what());
        QTextStream(stderr) << "tolvane-host: " << failure << '\n';
    }

    QTextStream out(stdout);
    JsonLines json;
    int differing = 0;
    for (int i = 0; i < int(lines.size()); ++i) {
        const Tag &tag = lines[i].tag;
        const bool alike = found[i] == wanted[i];
        differing += alike ? 0 : 1;
        if (asJson) {
            QJsonObject object = readingObject(connection, tag, {found[i], failure});
            object.insert("wanted"_s, valueArray(formatValues(tag, wanted[i])));
            object.insert("alike"_s, alike);
            json.write(object);
        }
        if (asJson || alike)
            continue;
        out << lines[i].address << ": wrote " << lines[i].values << ", the controller holds "
            << joinedValues(lines[i].tag, found[i]) << '\n';
    }
    if (!asJson)
        out << lines.size() - differing << " of " << lines.size()
            << " addresses written and read back alike\n";
    return differing == 0 && !connection.traceFailed() ? AllRight : SomethingFailed;
}

int recipe(const CommandLine &commandLine)
{
    const QStringList given = commandLine.positionalArguments().mid(1);
    const QString direction = given.value(0);
    const QString path = given.value(1);
    const QStringList addresses = given.mid(2);
    const bool isPush = direction == "push"_s;
    if (!isPush && direction != "pull"_s)
        throw Failure("recipe \"%1\": expected pull or push"_s.arg(direction), BadInput);
    if (path.isEmpty())
        throw Failure("no recipe file given; expected %1 FILE"_s.arg(direction), BadInput);
    const QStringList unasked = addresses + commandLine.tagFiles();
    if (isPush && !unasked.isEmpty())
        throw Failure(
            "unexpected \"%1\": push takes its addresses from the file"_s.arg(unasked.first()),
            BadInput);
    Connection connection(commandLine);
    return isPush ? push(connection, path, commandLine.asJson())
                  : pull(connection, path, addresses, commandLine.tagFiles(), commandLine.asJson());
}

}  // namespace

int recipeCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        "recipe"_s,
        "pull: reads the file's addresses, or those given, and writes the file with "
        "their values.\npush: writes the file's values, reads them back and "
        "compares.\nThe file is CSV: address,value,value,..."_s);
    commandLine.addPositionalArgument("direction"_s, "pull or push."_s, "pull|push"_s);
    commandLine.addPositionalArgument("file"_s, "The recipe; - for pull to standard output."_s,
                                      "FILE"_s);
    commandLine.addPositionalArgument(
        "addresses"_s, "For pull, to begin a recipe: such as D_W:100x10:float or M_bit:20.5x8."_s,
        "[ADDRESS...]"_s);
    commandLine.addTagFileOption();
    addConnectionOptions(commandLine);
    commandLine.addJsonOption(
        "Print what the controller holds as a line of JSON for each address.");
    commandLine.read(arguments, std::numeric_limits<int>::max());
    return recipe(commandLine);
}

}  // namespace host
