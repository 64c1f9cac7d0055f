// Reads and writes recipe files.
#include "host/tags/recipe_file.h"

#include "host/output/csv.h"
#include "host/output/failure.h"
#include "host/output/output_file.h"
#include "host/output/text_file.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

#include <algorithm>

namespace host {

namespace {

constexpr QChar Semicolon = QLatin1Char(';');
constexpr QChar Dot = QLatin1Char('.');
constexpr QChar Comma = QLatin1Char(',');

}  // namespace

Recipe readRecipeFile(const Driver &driver, const QString &path)
{
    static const QRegularExpression header("^(#.*|address *([,;] *value.*)?[,; ]*)?$"_s,
                                           QRegularExpression::CaseInsensitiveOption);
    Recipe recipe;
    recipe.lines = readLines(path, "recipe"_s);
    if (recipe.lines.last().isEmpty())
        recipe.lines.removeLast();  // what follows the last end of line
    for (int i = 0; i < int(recipe.lines.size()); ++i) {
        const QString &text = recipe.lines[i];
        if (header.match(text).hasMatch())
            continue;
        const QString source = "%1:%2"_s.arg(QFileInfo(path).fileName()).arg(i + 1);
        RecipeRow row;
        row.line = i;
        row.separator = csvSeparator(text);
        row.values = csvFields(text, row.separator, source);
        row.address = row.values.takeFirst();
        row.tag = parseTag(driver, {{}, row.address, source});
        while (row.values.size() > valueCount(row.tag) && row.values.last().isEmpty())
            row.values.removeLast();  // spreadsheets fill lines up
        if (row.separator == Semicolon && row.tag.form.isNumber())
            row.values.replaceInStrings(Comma, Dot);
        recipe.rows.append(row);
    }
    return recipe;
}

int Recipe::rowOf(const Tag &tag, const QString &address)
{
    const auto row = std::find_if(rows.cbegin(), rows.cend(), [&](const RecipeRow &candidate) {
        return candidate.address == address && candidate.tag.point.stationNo == tag.point.stationNo;
    });
    if (row != rows.cend())
        return int(row - rows.cbegin());
    if (lines.isEmpty())
        lines.append("address,values"_s);
    const QChar separator = rows.isEmpty() ? Comma : rows.last().separator;
    rows.append({tag, address, {}, separator, int(lines.size())});
    lines.append(address);
    return int(rows.size()) - 1;
}

void Recipe::setValues(int row, const QVector<int> &units)
{
    RecipeRow &changed = rows[row];
    changed.values = formatValues(changed.tag, units);
    QString text = changed.address;
    for (const QString &value : std::as_const(changed.values)) {
        QString field = csvField(value);
        if (changed.separator == Semicolon && changed.tag.form.isNumber())
            field.replace(Dot, Comma);
        text += changed.separator + field;
    }
    lines[changed.line] = text;
}

QVector<Tag> Recipe::tags() const
{
    QVector<Tag> tags;
    for (const RecipeRow &row : rows)
        tags.append(row.tag);
    return tags;
}

void writeRecipeFile(const QString &path, const Recipe &recipe)
{
    replaceFile(path, recipe.lines.join(QLatin1Char('\n')).toUtf8() + '\n');
}

}  // namespace host
