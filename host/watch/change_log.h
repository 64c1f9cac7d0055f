// Changes as lines: for people, or as CSV.
#ifndef TOLVANE_HOST_CHANGE_LOG_H
#define TOLVANE_HOST_CHANGE_LOG_H

#include "host/watch/watched_values.h"

#include <QtCore/QFile>

namespace host {

class ChangeLog
{
public:
    enum Form { Columns, Csv };

    /**
     * Starts the file anew; "-" is standard output. As CSV: time,name,address,value. Throws Failure
     * (bad input) when the file cannot be written.
     */
    ChangeLog(const QString &path, Form form);

    void write(const WatchedValue &value);
    void flush() { m_file.flush(); }

private:
    QFile m_file;
    Form m_form;
};

}  // namespace host

#endif
