// The controller's memory as the soak books it: how it is given its start, and how it is found at
// the end.
#pragma once

#include "host/driver/session.h"
#include "host/exchange/loop.h"

#include "plc/memory.h"

#include <QtCore/QMap>
#include <QtCore/QPair>

namespace host {

/** A device as engineers write it, such as "D" or "TX", and the number of one of its words. */
using WordAddress = QPair<QString, int>;

/** Words 0 to 65535; a word that is not listed is 0. */
using MemoryImage = QMap<WordAddress, int>;

/** Where a word or bit of a point lies in the controller: bits of one of its words. */
struct Place
{
    WordAddress word;
    int shift = 0;      ///< position of the lowest of the bits
    int mask = 0xFFFF;  ///< the bits, in place
};

/** The place of a point's value number `index`. */
Place placeOf(const Point &point, int index);

/** Puts the words, of devices that it has, into a simulated controller's memory. */
void storeImage(const MemoryImage &image, plc::Memory &memory);

/** All words that are not 0, past driver and line. */
MemoryImage imageOf(const plc::Memory &memory);

/**
 * Reads the points from a real controller: words, or contacts and bits from a whole word on.
 * Restarts the session. Throws Failure when a read is given up or the line is lost.
 */
MemoryImage readImage(const Driver &driver, Session &session, Line &line,
                      const LoopSettings &settings, const QVector<Point> &points);

}  // namespace host
