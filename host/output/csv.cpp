// Takes lines of CSV files apart.
#include "host/output/csv.h"

#include "host/output/failure.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

namespace host {

namespace {

constexpr QChar Quote = QLatin1Char('"');

}  // namespace

QStringList csvFields(const QString &line, QChar separator, bool *ok)
{
    QStringList fields;
    *ok = true;
    for (int at = 0; at <= int(line.size());) {
        while (at < int(line.size()) && line[at].isSpace())
            ++at;
        QString field;
        if (at < int(line.size()) && line[at] == Quote) {
            for (++at; at < int(line.size()); ++at) {
                if (line[at] == Quote && !(at + 1 < int(line.size()) && line[at + 1] == Quote))
                    break;
                at += line[at] == Quote;
                field += line[at];
            }
            *ok = *ok && at < int(line.size());
            const int next = int(line.indexOf(separator, at + 1));
            const QString rest = line.mid(at + 1, next < 0 ? -1 : next - at - 1);
            *ok = *ok && rest.trimmed().isEmpty();
            at = next;
        } else {
            const int next = int(line.indexOf(separator, at));
            field = line.mid(at, next < 0 ? -1 : next - at).trimmed();
            at = next;
        }
        fields.append(field);
        if (at < 0)
            break;
        ++at;
    }
    return fields;
}

QString csvField(QString text)
{
    static const QRegularExpression special("[,;\"]|^\\s|\\s$"_s);
    if (!text.contains(special))
        return text;
    return Quote + text.replace(Quote, "\"\""_s) + Quote;
}

QChar csvSeparator(const QString &line)
{
    bool quoted = false;
    for (const QChar &sign : line) {
        quoted = quoted != (sign == Quote);
        if (!quoted && sign == QLatin1Char(';'))
            return sign;
    }
    return QLatin1Char(',');
}

QStringList readLines(const QString &path, const QString &kind)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure("cannot read the %1 %2: %3"_s.arg(kind, path, file.errorString()), BadInput);
    QByteArray text = file.readAll();
    if (text.startsWith("\xEF\xBB\xBF"))
        text.remove(0, 3);
    QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = line.trimmed();
    return lines;
}

}  // namespace host
