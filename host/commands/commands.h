// The commands of tolvane-host: each takes the program's whole argument list and returns the exit
// status. Bad input and failures are thrown as Failure.
#pragma once

#include <QtCore/QStringList>

namespace host {

int demoCommand(const QStringList &arguments);
int seriesCommand(const QStringList &arguments);
int infoCommand(const QStringList &arguments);
int planCommand(const QStringList &arguments);
int explainCommand(const QStringList &arguments);
int checkCommand(const QStringList &arguments);
int soakCommand(const QStringList &arguments);
int readCommand(const QStringList &arguments);
int recipeCommand(const QStringList &arguments);
int watchCommand(const QStringList &arguments);
int writeCommand(const QStringList &arguments);

}  // namespace host
