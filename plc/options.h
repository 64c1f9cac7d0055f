// The program's command line.
#pragma once

#include "plc/faults.h"
#include "plc/pacing.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace plc {

constexpr int DefaultBaud = 115200;

struct Options
{
    bool tcp = false;  ///< a TCP port, not a pseudo-terminal
    quint16 tcpPort = 0;
    bool anyAddress = false;
    QString link;   ///< symbolic link to the pseudo-terminal, or empty
    QString image;  ///< memory image, or empty
    bool save = false;
    bool still = false;
    bool verbose = false;
    LineSettings line{DefaultBaud, 0};
    FaultPlan faults;
    quint32 seed = 1;
};

/** Status with which the program ends after bad input. */
constexpr int BadInput = 2;

/** Says on standard error what is wrong; returns BadInput. */
int complain(const QString &message);

/**
 * Reads the arguments (the first is the program's name) into `*options`. Returns nothing when the
 * program is to run, or the status to end with, after a help text or a complaint was printed.
 */
std::optional<int> readOptions(const QStringList &arguments, Options *options);

}  // namespace plc
