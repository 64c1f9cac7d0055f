// Addresses as people write them, such as "D_W:100x10" or "M_bit:20.5", and as the driver
// counts them.
#pragma once

#include "host/driver/driver_library.h"

#include <tuple>

namespace host {

constexpr int BitsPerWord = 16;

/** A run of consecutive words or bits of one register type of one station. */
struct Point
{
    int stationNo = 0;
    QString regName;
    int address = 0;     ///< the driver's address number of the first
    int count = 1;       ///< words, or bits for bit types
    bool isBit = false;  ///< of a bit type
};

/** To compare and to order points by: station, register type, address and count. */
inline auto rangeOf(const Point &point)
{
    return std::tie(point.stationNo, point.regName, point.address, point.count);
}

struct RangeOrder
{
    bool operator()(const Point &left, const Point &right) const
    {
        return rangeOf(left) < rangeOf(right);
    }
};

/**
 * Reads TYPE:ADDRESS or TYPE:ADDRESSxCOUNT and has the driver check it; a value takes so many words
 * or bits. The station is the driver's. Throws Failure (bad input) that names the text, what is
 * wrong with it and the type's form or range.
 */
Point parsePoint(const Driver &driver, const QString &text, int unitsPerValue = 1);

/** The point in the form that parsePoint() reads; with its station in front: "2/D_W:100". */
QString pointText(const Driver &driver, const Point &point, bool withStation = false);

/** Units of one point: words, or bits of a bit type; counted from the point's first. */
struct Part
{
    int first = 0;
    int count = 0;  ///< 0: none
};

/** The memory that a type lies in: "M" for M_W and M_bit, "TX" for TX. */
QString memoryArea(const QString &regName);

/** Units of the point to one of the block: 16 for bits "M_bit" in words "M_W", else 1. */
int unitsPerUnit(const Point &point, const Point &block);

/** So many words, 1 or 2, from a part of the point or beside it, inside the type's range. */
Point provingPart(const Point &point, int words);

/** What a request of the driver reads or writes, as a point; bit addresses are not marked. */
Point blockOf(const VARIABLE &item);

/** The part of the point that lies in the block. Bits "M_bit" lie in the words "M_W". */
Part partInside(const Point &point, const Point &block);

}  // namespace host
