// The process that the simulated controller controls: a few words and bits that move by
// themselves, so that a watching host sees changes.
#pragma once

#include "plc/memory.h"

#include <QtCore/QString>

namespace plc {

/**
 * Brings the moving words to where they stand `elapsedMs` milliseconds after the start. A moving
 * bit leaves the other bits of its word as they are.
 */
void move(Memory &memory, qint64 elapsedMs);

/** What moves and how, a line each, for a help text. */
QString motionHelp();

}  // namespace plc
