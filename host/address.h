// Addresses as people write them, such as "D_W:100x10" or "M_bit:20.5", and as the driver
// counts them.
#ifndef TOLVANE_HOST_ADDRESS_H
#define TOLVANE_HOST_ADDRESS_H

#include "host/identity.h"

namespace host {

/** A run of consecutive words or bits of one register type of one station. */
struct Point
{
    int stationNo = 0;
    QString regName;
    int address = 0;     ///< the driver's address number of the first
    int count = 1;       ///< words, or bits for bit types
    bool isBit = false;  ///< of a bit type
};

/**
 * Reads TYPE:ADDRESS or TYPE:ADDRESSxCOUNT and has the driver check it; a value takes so many words
 * or bits. Throws Failure (bad input) that names the text, what is wrong with it and the type's
 * form or range.
 */
Point parsePoint(const Driver &driver, const Identity &identity, const QString &text, int stationNo,
                 int unitsPerValue = 1);

/** The point in the form that parsePoint() reads. */
QString pointText(const Driver &driver, const Point &point);

}  // namespace host

#endif
