// Values as lines: for people, for spreadsheets, for programs.
#pragma once

#include "host/output/output_file.h"
#include "host/output/time_text.h"
#include "host/watch/watched_values.h"

#include <QtCore/QJsonObject>

namespace host {

/** Where each line is on its way as soon as it is written. A bad value is none. */
class ValueLog
{
public:
    enum Form {
        Columns,   ///< time, name, address, value; and the reason of one that is not good
        Csv,       ///< time,name,address,value,quality,reason
        CsvTable,  ///< time, then value and quality of every value: a line a sample
        JsonLines  ///< an object a value: time, tag, address, number, value, quality, reason
    };

    /**
     * "-" is standard output. A CSV file that is there is gone on with. Throws Failure, see
     * OutputFile.
     */
    ValueLog(const QString &path, Form form, Zone zone, const QVector<WatchedValue> &values);

    /** Writes the values, with CsvTable all there are in one line. Throws Failure. */
    void write(const QVector<WatchedValue> &values, const QDateTime &time);

    /** Writes a JSON object as a line of its own. Throws Failure. */
    void write(const QJsonObject &object);

    /** Opens a file's name again. Throws Failure. */
    void reopen() { m_file->reopen(); }

private:
    QString line(const WatchedValue &value, const QString &time) const;

    Form m_form;
    Zone m_zone;
    std::unique_ptr<OutputFile> m_file;
};

}  // namespace host
