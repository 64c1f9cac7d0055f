// What a soak came to, as text for people and as JSON for programs.
#pragma once

#include "host/soak/soak.h"

#include <QtCore/QTextStream>

namespace host {

/** What the soak was run with. */
struct SoakSetup
{
    QString driver;
    QString line;  ///< and its pace
    QString faults;
    quint32 seed = 1;
};

// controllerReport: the controller's counts, lines of "title: name=number ..."
void printSoak(QTextStream &out, const SoakSetup &setup, const Soak &soak,
               const QString &controllerReport);
void printSoakAsJson(QTextStream &out, const SoakSetup &setup, const Soak &soak,
                     const QString &controllerReport);

}  // namespace host
