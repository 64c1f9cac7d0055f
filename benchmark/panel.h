// A panel with nothing around it: starts the driver, registers keys, and answers every read frame
// at once with a reply prepared beforehand.
#ifndef TOLVANE_BENCHMARK_PANEL_H
#define TOLVANE_BENCHMARK_PANEL_H

#include "host_interface.h"

namespace panel {

enum { WordsPerBlock = 127, AreaWords = 21504 };

/** Starts the driver over with this block limit in words; nothing is registered or cached. */
void start(int blockLimit);

/** A monitor key of `count` words. */
KEY_ADDRESS key(int stationNo, const char *regName, int startAddr, int count);

/** Puts `areas` data areas of other stations into the cache. */
void fillCache(int areas);

/** The good reply to a read of `words` words that all hold `value`. */
QByteArray readReply(int words, int value);

/** Gets a frame and hands over the reply; false when there was none or the reply was refused. */
bool exchange(const QByteArray &reply);

}  // namespace panel

#endif
