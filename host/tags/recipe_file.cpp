// Reads and writes recipe files.
#include "host/tags/recipe_file.h"

#include "host/output/csv.h"
#include "host/output/failure.h"
#include "host/output/whole_file.h"

#include <QtCore/QFileInfo>

#include <utility>

namespace host {

namespace {

const QString Header = "address,values"_s;

RecipeLine lineOf(const Driver &driver, const Identity &identity, const QString &text,
                  int stationNo, const QString &source)
{
    bool ok = false;
    QStringList fields = csvFields(text, csvSeparator(text), &ok);
    if (!ok)
        throw Failure(
            "%1: \"%2\": expected each quote to be closed at its field's "
            "end"_s.arg(source, text),
            BadInput);
    RecipeLine line;
    line.address = fields.takeFirst();
    line.tag = parseTag(driver, identity, QString(), line.address, stationNo, source);
    while (fields.size() > valueCount(line.tag) && fields.last().isEmpty())
        fields.removeLast();  // spreadsheets fill lines up
    for (QString &field : fields)
        field = csvField(field);
    line.values = fields.join(QLatin1Char(','));
    return line;
}

}  // namespace

QVector<RecipeLine> readRecipeFile(const Driver &driver, const Identity &identity,
                                   const QString &path, int stationNo)
{
    QVector<RecipeLine> recipe;
    QStringList before;
    const QStringList lines = readLines(path, "recipe"_s);
    for (int i = 0; i < int(lines.size()); ++i) {
        const QString &text = lines[i];
        const bool isHeader = text.startsWith("address"_s, Qt::CaseInsensitive);
        if (isHeader || text.isEmpty() || text.startsWith(QLatin1Char('#'))) {
            before.append(isHeader ? Header : text);
            continue;
        }
        const QString source = "%1:%2"_s.arg(QFileInfo(path).fileName()).arg(i + 1);
        recipe.append(lineOf(driver, identity, text, stationNo, source));
        recipe.last().before = std::exchange(before, QStringList());
    }
    if (recipe.isEmpty())
        throw Failure("there is no address in %1"_s.arg(path), BadInput);
    if (!before.isEmpty() && before.last().isEmpty())
        before.removeLast();  // what follows the last end of line
    recipe.last().after = before;
    return recipe;
}

void writeRecipeFile(const QString &path, const QVector<RecipeLine> &lines)
{
    QStringList all;
    for (const RecipeLine &line : lines)
        all +=
            line.before + QStringList(line.address + QLatin1Char(',') + line.values) + line.after;
    if (!lines.isEmpty() && lines.first().before.isEmpty())
        all.prepend(Header);
    replaceFile(path, all.join(QLatin1Char('\n')).toUtf8() + '\n');
}

}  // namespace host
