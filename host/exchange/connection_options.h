// The options that say how to reach a controller, and what they amount to.
#pragma once

#include "host/driver/driver_library.h"
#include "host/driver/session.h"
#include "host/exchange/loop.h"
#include "host/line/device_line.h"
#include "host/output/time_text.h"

#include <QtCore/QCommandLineParser>

namespace host {

/** Reads a whole number from an option. Throws Failure (bad input) outside the range. */
int numberOption(const QCommandLineParser &parser, const QString &name, int lowest, int highest);

/**
 * Adds --port, --tcp, --simulate and the others that ConnectionOptions reads; or only those named,
 * for commands with a line of their own or none, which then read them with the functions below.
 */
void addConnectionOptions(QCommandLineParser &parser, const QStringList &names = {});

// Each throws Failure (bad input) that names the option and what was expected.
SerialSettings serialOption(const QCommandLineParser &parser, const Identity &identity);
LinePace paceOptions(const QCommandLineParser &parser, const Identity &identity);
int stationOption(const QCommandLineParser &parser);
int blockLimitOption(const QCommandLineParser &parser);
LoopSettings loopOptions(const QCommandLineParser &parser);

struct ConnectionOptions
{
    QString device;  ///< one of these two, or neither: simulated
    QString server;
    bool simulationAsked = false;  ///< --simulate was given
    LinePace pace;
    SessionSettings session;
    LoopSettings loop;
    QString trace;          ///< file to write, or empty
    Zone zone = Zone::Utc;  ///< of the times in traces and logs

    /** Throws Failure (bad input) that names the option and what was expected. */
    ConnectionOptions(const QCommandLineParser &parser, const Identity &identity);
};

}  // namespace host
