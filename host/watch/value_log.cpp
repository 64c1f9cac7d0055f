// Puts values into lines.
#include "host/watch/value_log.h"

#include "host/csv.h"
#include "host/tag_text.h"

namespace host {

namespace {

QString headingOf(ValueLog::Form form, const QVector<WatchedValue> &values)
{
    if (form == ValueLog::Csv)
        return QStringLiteral("time,name,address,value,quality,reason");
    QStringList fields{QStringLiteral("time")};
    for (const WatchedValue &value : values)
        fields << csvField(value.name) << csvField(value.name + QLatin1String(" quality"));
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
      m_file(form == Csv || form == CsvTable
                 ? openLog(path, headingOf(form, values))
                 : std::make_unique<OutputFile>(path, OutputFile::Append))
{
}

void ValueLog::write(const QVector<WatchedValue> &values, const QVector<int> &which,
                     const QDateTime &time)
{
    const QString now = timeText(time, m_zone);
    QString text;
    if (m_form == CsvTable) {
        QStringList fields{now};
        for (const WatchedValue &value : values)
            fields << csvField(presentText(value)) << qualityText(value.quality);
        text = fields.join(QLatin1Char(',')) + QLatin1Char('\n');
    } else {
        for (const int index : which)
            text += line(values[index], now);
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
        QJsonObject object{
            {QStringLiteral("time"), time},
            {QStringLiteral("tag"), value.name},
            {QStringLiteral("address"), value.address},
            {QStringLiteral("number"), value.number},
            {QStringLiteral("station"), value.stationNo},
            {QStringLiteral("value"), isKnown ? valueArray({text}).first() : QJsonValue()},
            {QStringLiteral("quality"), quality}};
        if (!value.reason.isEmpty())
            object.insert(QStringLiteral("reason"), value.reason);
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
    fields << (isKnown ? text : QStringLiteral("-"));
    if (value.quality != Quality::Good)
        fields << quality + QLatin1String(": ") + value.reason;
    return fields.join(QLatin1String("  ")) + QLatin1Char('\n');
}

}  // namespace host
