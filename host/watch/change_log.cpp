// Writes a line for each change.
#include "host/watch/change_log.h"

#include "host/failure.h"

#include <QtCore/QDateTime>

#include <cstdio>

namespace host {

namespace {

// A name from a tag file may hold what separates fields.
QString csvField(QString text)
{
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')))
        return text;
    return QLatin1Char('"') + text.replace(QLatin1String("\""), QLatin1String("\"\"")) +
           QLatin1Char('"');
}

}  // namespace

ChangeLog::ChangeLog(const QString &path, Form form) : m_file(path), m_form(form)
{
    const bool open = path == QLatin1String("-")
                          ? m_file.open(stdout, QIODevice::WriteOnly)
                          : m_file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    if (!open)
        throw Failure(QStringLiteral("cannot write \"%1\": %2").arg(path, m_file.errorString()),
                      BadInput);
    if (m_form == Csv)
        m_file.write("time,name,address,value\n");
}

void ChangeLog::write(const WatchedValue &value)
{
    const QString time = QDateTime::currentDateTime().toString(Qt::ISODateWithMs);
    const QStringList fields =
        m_form == Csv ? QStringList{time, csvField(value.name), value.address, value.text}
        : value.name == value.address ? QStringList{time, value.name, value.text}
                                      : QStringList{time, value.name, value.address, value.text};
    m_file.write(fields.join(QLatin1String(m_form == Csv ? "," : "  ")).toUtf8() + '\n');
}

}  // namespace host
