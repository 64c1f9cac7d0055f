// What a soak came to, as text for people and as JSON for programs.
#pragma once

#include "host/soak/soak.h"

#include <QtCore/QTextStream>

namespace host {

/** What the soak was run with. */
struct SoakSetup
{
    QString driver;
    QString line;  ///< what the controller is reached through
    QString faults;
    quint32 seed = 1;
    LoopSettings loop;
};

/** controllerReport: the controller's closing counts, lines of "title: name=number ..."; or
 * nothing. */
void printSoak(QTextStream &out, const SoakSetup &setup, const Soak &soak,
               const QString &controllerReport);
void printSoakAsJson(QTextStream &out, const SoakSetup &setup, const Soak &soak,
                     const QString &controllerReport);

}  // namespace host
