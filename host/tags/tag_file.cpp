// Collects tags as they are given: in arguments and in tag files.
#include "host/tags/tags.h"

#include "host/output/csv.h"
#include "host/output/failure.h"
#include "host/output/text_file.h"

#include <QtCore/QFileInfo>
#include <QtCore/QHash>

#include <cmath>

namespace host {

namespace {

constexpr int MostDecimals = 12;

const QStringList &columnNames()
{
    static const QStringList names =
        "name,address,format,scale,offset,unit,"
        "decimals,comment,station"_s.split(QLatin1Char(','));
    return names;
}

bool isHeader(const QStringList &fields)
{
    return fields.contains("address"_s, Qt::CaseInsensitive);
}

/** Reads one file's lines into tags. */
class TagFile
{
public:
    explicit TagFile(const QString &path) : m_path(path), m_file(QFileInfo(path).fileName()) {}

    QVector<TagText> read()
    {
        const QStringList lines = readLines(m_path, "tag file"_s);
        for (int i = 0; i < int(lines.size()); ++i) {
            if (lines[i].isEmpty() || lines[i].startsWith(QLatin1Char('#')))
                continue;
            m_source = "%1:%2"_s.arg(m_file).arg(i + 1);
            take(lines[i]);
        }
        if (m_tags.isEmpty())
            throw Failure("there is no tag in %1"_s.arg(m_path), BadInput);
        return m_tags;
    }

private:
    Failure refuse(const QString &what, const QString &expected) const
    {
        return Failure("%1: %2: expected %3"_s.arg(m_source, quoted(what), expected), BadInput);
    }

    void take(const QString &line)
    {
        const bool isFirst = m_separator.isNull();
        if (isFirst)
            m_separator = csvSeparator(line);
        QStringList fields = csvFields(line, m_separator, m_source);
        while (!fields.isEmpty() && fields.last().isEmpty())
            fields.removeLast();
        if (fields.isEmpty())  // separators only: what spreadsheets make of an empty line
            return;
        if (isFirst && isHeader(fields))
            takeHeader(fields);
        else
            takeTag(fields, line);
    }

    void takeHeader(const QStringList &fields)
    {
        m_columns.clear();
        for (const QString &field : fields) {
            const QString name = field.toLower();
            if (!columnNames().contains(name) || m_columns.contains(name))
                throw refuse(field,
                             "columns out of %1, each once"_s.arg(columnNames().join(", "_s)));
            m_columns.append(name);
        }
    }

    void takeTag(const QStringList &fields, const QString &line)
    {
        const auto field = [&](const char *column) {
            const int at = int(m_columns.indexOf(QLatin1String(column)));
            return at < 0 ? QString() : fields.value(at);
        };
        TagText tag{field("name"), field("address"), m_source};
        if (fields.size() > m_columns.size() || tag.address.isEmpty())
            throw refuse(line, m_columns.join(QLatin1Char(',')) +
                                   ", of which the address must not be missing"_s);
        if (!field("station").isEmpty()) {
            if (tag.address.contains(QLatin1Char('/')))
                throw refuse(line, "one station"_s);
            tag.address.prepend(field("station") + QLatin1Char('/'));
        }
        if (!field("format").isEmpty())
            tag.address += QLatin1Char(':') + field("format");
        tag.unit = field("unit");
        tag.scaling.scale = number("scale", field("scale"), 1);
        tag.scaling.offset = number("offset", field("offset"), 0);
        if (!field("decimals").isEmpty()) {
            bool ok = false;
            tag.scaling.decimals = field("decimals").toInt(&ok);
            if (!ok || tag.scaling.decimals < 0 || tag.scaling.decimals > MostDecimals)
                throw refuse(field("decimals"), "decimals from 0 to %1"_s.arg(MostDecimals));
        }
        if (!(std::abs(tag.scaling.scale) > 0))
            throw refuse(field("scale"), "a scale that is not 0"_s);
        m_tags.append(tag);
    }

    double number(const char *column, QString text, double missing) const
    {
        if (text.isEmpty())
            return missing;
        if (m_separator == QLatin1Char(';'))
            text.replace(QLatin1Char(','), QLatin1Char('.'));
        bool ok = false;
        const double value = text.toDouble(&ok);
        if (!ok || !std::isfinite(value))
            throw refuse(text, "a number as %1"_s.arg(QLatin1String(column)));
        return value;
    }

    QString m_path;
    QString m_file;
    QString m_source;  // of the line that is being read
    QChar m_separator;
    QStringList m_columns = columnNames().mid(0, 3);
    QVector<TagText> m_tags;
};

}  // namespace

QVector<TagText> collectTags(const QStringList &arguments, const QStringList &tagFiles)
{
    QVector<TagText> tags;
    for (const QString &path : tagFiles)
        tags += TagFile(path).read();
    for (int i = 0; i < int(arguments.size()); ++i) {
        const QString &argument = arguments[i];
        if (argument.endsWith(".csv"_s, Qt::CaseInsensitive)) {
            tags += TagFile(argument).read();
            continue;
        }
        const int equals = int(argument.indexOf(QLatin1Char('=')));
        tags.append({argument.left(std::max(0, equals)), argument.mid(equals + 1),
                     "argument %1"_s.arg(i + 1)});
    }
    QHash<QString, QString> sources;  // by name
    for (TagText &tag : tags) {
        tag.twin = sources.value(tag.name);
        if (!tag.name.isEmpty())
            sources[tag.name] = tag.source;
    }
    return tags;
}

}  // namespace host
