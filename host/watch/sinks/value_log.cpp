// Puts values into lines.
#include "host/watch/sinks/value_log.h"

#include "host/output/csv.h"
#include "host/tags/tag_text.h"

namespace host {

namespace {

constexpr FileKind LogFile{"log of values", "^time,"};

QString headingOf(ValueLog::Form form, const QVector<WatchedValue> &values)
{
    if (form == ValueLog::Csv)
        return "time,name,address,value,quality,reason"_s;
    if (form != ValueLog::CsvTable)
        return QString();
    QStringList fields{"time"_s};
    for (const WatchedValue &value : values)
        fields << csvField(value.name) << csvField(value.name + " quality"_s);
    return fields.join(QLatin1Char(','));
}

QString presentText(const WatchedValue &value)
{
    return value.quality == Quality::Bad ? QString() : value.text;
}

}  // namespace

ValueLog::ValueLog(const QString &path, Form form, Zone zone, const QVector<WatchedValue> &values)
    : m_form(form),
      m_zone(zone),
      m_file(std::make_unique<OutputFile>(path, LogFile, headingOf(form, values)))
{
}

void ValueLog::write(const QVector<WatchedValue> &values, const QDateTime &time)
{
    const QString now = timeText(time, m_zone);
    QString text;
    if (m_form == CsvTable) {
        QStringList fields{now};
        for (const WatchedValue &value : values)
            fields << csvField(presentText(value)) << qualityText(value.quality);
        text = fields.join(QLatin1Char(',')) + QLatin1Char('\n');
    } else {
        for (const WatchedValue &value : values)
            text += line(value, now);
    }
    if (!text.isEmpty())
        m_file->write(text);
}

void ValueLog::write(const QJsonObject &object)
{
    m_file->write(jsonLine(object));
}

QString ValueLog::line(const WatchedValue &value, const QString &time) const
{
    const QString text = presentText(value);
    const bool isKnown = value.quality != Quality::Bad;
    const QString quality = qualityText(value.quality);
    if (m_form == JsonLines) {
        QJsonObject object{{"time"_s, time},
                           {"tag"_s, value.name},
                           {"address"_s, value.address},
                           {"number"_s, value.number},
                           {"station"_s, value.stationNo},
                           {"value"_s, isKnown ? valueArray({text}).first() : QJsonValue()},
                           {"quality"_s, quality}};
        if (!value.reason.isEmpty())
            object.insert("reason"_s, value.reason);
        return jsonLine(object);
    }
    if (m_form == Csv)
        return QStringList{time,    csvField(value.name),  value.address, csvField(text),
                           quality, csvField(value.reason)}
                   .join(QLatin1Char(',')) +
               QLatin1Char('\n');
    QStringList fields{time, value.name};
    if (value.hasOwnName)
        fields << value.address;
    fields << (isKnown ? text : "-"_s);
    if (value.quality != Quality::Good)
        fields << quality + ": "_s + value.reason;
    return fields.join("  "_s) + QLatin1Char('\n');
}

}  // namespace host
