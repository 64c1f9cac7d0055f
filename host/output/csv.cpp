// Takes lines of CSV files apart.
#include "host/output/csv.h"

#include "host/output/failure.h"

#include <QtCore/QRegularExpression>

namespace host {

namespace {

constexpr QChar Quote = QLatin1Char('"');
constexpr QChar Apostrophe = QLatin1Char('\'');

// What spreadsheets take for a formula, or would without the apostrophes before it.
bool isFormula(const QString &text)
{
    static const QRegularExpression form("^'*[=+@-]"_s);
    bool isNumber = false;
    text.toDouble(&isNumber);
    return !isNumber && text.contains(form);
}

}  // namespace

QStringList csvFields(const QString &line, QChar separator, const QString &place, const char *what)
{
    QStringList fields;
    bool ok = true;
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
            ok = ok && at < int(line.size());
            const int next = int(line.indexOf(separator, at + 1));
            const QString rest = line.mid(at + 1, next < 0 ? -1 : next - at - 1);
            ok = ok && rest.trimmed().isEmpty();
            at = next;
        } else {
            const int next = int(line.indexOf(separator, at));
            field = line.mid(at, next < 0 ? -1 : next - at).trimmed();
            at = next;
        }
        if (field.startsWith(Apostrophe) && isFormula(field))
            field.remove(0, 1);
        fields.append(field);
        if (at < 0)
            break;
        ++at;
    }
    if (!ok)
        throw Failure("%1: %2: expected each quote to be closed at its %3's end"_s.arg(
                          place, quoted(line), QLatin1String(what)),
                      BadInput);
    return fields;
}

QString csvField(QString text)
{
    static const QRegularExpression special("[,;\"]|^\\s|\\s$"_s);
    if (isFormula(text))
        text.prepend(Apostrophe);
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

}  // namespace host
