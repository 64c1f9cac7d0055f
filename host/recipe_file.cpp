// Reads and writes recipe files.
#include "host/recipe_file.h"

#include "host/failure.h"
#include "host/whole_file.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace host {

namespace {

const char *const Header = "address,values";

}  // namespace

QVector<RecipeLine> readRecipeFile(const Driver &driver, const Identity &identity,
                                   const QString &path, int stationNo)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(QStringLiteral("cannot read the recipe %1: %2").arg(path, file.errorString()),
                      BadInput);
    QVector<RecipeLine> recipe;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (int i = 0; i < int(lines.size()); ++i) {
        const QString text = lines[i].trimmed();
        if (text.isEmpty() || text.startsWith(QLatin1Char('#')) || text == QLatin1String(Header))
            continue;
        RecipeLine line;
        line.address = text.section(QLatin1Char(','), 0, 0).trimmed();
        line.values = text.section(QLatin1Char(','), 1).trimmed();
        const QString source = QStringLiteral("%1:%2").arg(QFileInfo(path).fileName()).arg(i + 1);
        line.tag = parseTag(driver, identity, QString(), line.address, stationNo, source);
        recipe.append(line);
    }
    if (recipe.isEmpty())
        throw Failure(QStringLiteral("there is no address in %1").arg(path), BadInput);
    return recipe;
}

void writeRecipeFile(const QString &path, const QVector<RecipeLine> &lines)
{
    QByteArray text = QByteArray(Header) + '\n';
    for (const RecipeLine &line : lines)
        text += (line.address + QLatin1Char(',') + line.values).toUtf8() + '\n';

    replaceFile(path, text);
}

}  // namespace host
