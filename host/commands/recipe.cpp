// tolvane-host recipe: many values at once, from the controller to a file or the other way.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/failure.h"
#include "host/recipe_file.h"
#include "host/recipe_transfer.h"

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
    ProgressBar(RecipeTransfer &transfer, const QString &title)
        : m_transfer(transfer), m_shown(::isatty(STDERR_FILENO) == 1)
    {
        if (!m_shown)
            return;
        transfer.progress = [title](int blocks, int units, int allUnits) {
            const int done = int(qint64(BarWidth) * qMin(units, allUnits) / allUnits);
            QTextStream(stderr) << '\r' << title << " [" << QString(done, QLatin1Char('#'))
                                << QString(BarWidth - done, QLatin1Char(' ')) << "] " << units
                                << " of " << allUnits << " in " << blocks << " blocks";
        };
    }
    ~ProgressBar()
    {
        m_transfer.progress = nullptr;
        if (m_shown)
            QTextStream(stderr) << '\n';
    }
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;

private:
    RecipeTransfer &m_transfer;
    bool m_shown;
};

QVector<Tag> tagsOf(const QVector<RecipeLine> &lines)
{
    QVector<Tag> tags;
    for (const RecipeLine &line : lines)
        tags.append(line.tag);
    return tags;
}

int pull(Connection &connection, const QString &path, const QStringList &addresses)
{
    QVector<RecipeLine> lines;
    if (addresses.isEmpty())
        lines = readRecipeFile(connection.driver(), connection.identity(), path,
                               connection.stationNo());
    for (int i = 0; i < int(addresses.size()); ++i) {
        const Tag tag =
            parseTag(connection.driver(), connection.identity(), QString(), addresses[i],
                     connection.stationNo(), QStringLiteral("argument %1").arg(i + 3));
        lines.append({tag, addresses[i], QString()});
    }
    RecipeTransfer transfer(connection, tagsOf(lines));
    connection.open();
    QVector<QVector<int>> values;
    {
        const ProgressBar bar(transfer, QStringLiteral("pull"));
        values = transfer.read();
    }
    for (int i = 0; i < int(lines.size()); ++i)
        lines[i].values = formatValues(lines[i].tag, values[i]).join(QLatin1Char(','));
    writeRecipeFile(path, lines);
    return AllRight;
}

int push(Connection &connection, const QString &path)
{
    const QVector<RecipeLine> lines =
        readRecipeFile(connection.driver(), connection.identity(), path, connection.stationNo());
    QVector<QVector<int>> wanted;
    for (const RecipeLine &line : lines)
        wanted.append(parseValues(line.tag, line.values));
    RecipeTransfer transfer(connection, tagsOf(lines));
    connection.open();
    {
        const ProgressBar bar(transfer, QStringLiteral("push"));
        transfer.write(wanted);
    }
    QVector<QVector<int>> found;
    {
        const ProgressBar bar(transfer, QStringLiteral("check"));
        found = transfer.read();
    }

    QTextStream out(stdout);
    int differing = 0;
    for (int i = 0; i < int(lines.size()); ++i) {
        if (found[i] == wanted[i])
            continue;
        ++differing;
        out << lines[i].address << ": wrote " << lines[i].values << ", the controller holds "
            << formatValues(lines[i].tag, found[i]).join(QLatin1Char(',')) << '\n';
    }
    out << lines.size() - differing << " of " << lines.size()
        << " addresses written and read back alike\n";
    return differing == 0 ? AllRight : SomethingFailed;
}

}  // namespace

int recipeCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        QStringLiteral("recipe"),
        QStringLiteral("pull: reads the file's addresses, or those given, and writes the file with "
                       "their values.\npush: writes the file's values, reads them back and "
                       "compares.\nThe file is CSV: address,value,value,..."));
    commandLine.addPositionalArgument(QStringLiteral("direction"), QStringLiteral("pull or push."),
                                      QStringLiteral("pull|push"));
    commandLine.addPositionalArgument(QStringLiteral("file"),
                                      QStringLiteral("The recipe; - for pull to standard output."),
                                      QStringLiteral("FILE"));
    commandLine.addPositionalArgument(
        QStringLiteral("addresses"),
        QStringLiteral("For pull, to begin a recipe: such as D_W:100x10:float or M_bit:20.5x8."),
        QStringLiteral("[ADDRESS...]"));
    addConnectionOptions(commandLine);
    commandLine.read(arguments, std::numeric_limits<int>::max());

    const QStringList given = commandLine.positionalArguments().mid(1);
    const QString direction = given.value(0);
    const QString path = given.value(1);
    const QStringList addresses = given.mid(2);
    const bool isPush = direction == QLatin1String("push");
    if (!isPush && direction != QLatin1String("pull"))
        throw Failure(QStringLiteral("recipe \"%1\": expected pull or push").arg(direction),
                      BadInput);
    if (path.isEmpty())
        throw Failure(QStringLiteral("no recipe file given; expected %1 FILE").arg(direction),
                      BadInput);
    if (isPush && !addresses.isEmpty())
        throw Failure(QStringLiteral("unexpected \"%1\": push takes its addresses from the file")
                          .arg(addresses.first()),
                      BadInput);
    Connection connection(commandLine);
    return isPush ? push(connection, path) : pull(connection, path, addresses);
}

}  // namespace host
