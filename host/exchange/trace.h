// A record of everything on the line: a file with a line for each frame.
#pragma once

#include "host/exchange/loop.h"
#include "host/output/output_file.h"
#include "host/output/time_text.h"

namespace host {

/**
 * Each line has the time, "->" or "<-", the bytes as hex pairs ("-" for none) and what they
 * say, two spaces apart:
 *
 *     2026-11-22T22:41:05.123Z  ->  02 72 61 ... 03  read 2 words of D from word 100
 */
class Trace
{
public:
    /** Starts the file anew. Throws Failure (bad input) when it cannot be written. */
    explicit Trace(const QString &path, Zone zone = Zone::Utc)
        : m_file(path, OutputFile::Anew), m_zone(zone)
    {
    }

    /**
     * Writes what was thrown away, the request, the replies that were refused and the reply, with
     * what was wrong with it. To be called as soon as the exchange has ended. Throws Failure.
     */
    void write(const Exchange &exchange);

private:
    QString line(const QDateTime &time, const char *arrow, const QByteArray &bytes,
                 const QString &meaning) const;

    OutputFile m_file;
    Zone m_zone;
};

}  // namespace host
