// What the controller's memory must hold, and whether it does.
#pragma once

#include "host/driver/address.h"
#include "host/soak/finding.h"

#include "plc/memory.h"

#include <optional>

namespace host {

/** Where a value lies in the controller: bits of one of a device's words. */
struct Place
{
    char device = 0;
    int word = 0;
    int shift = 0;      ///< position of the lowest of the bits
    int mask = 0xFFFF;  ///< the bits, in place
};

/** The place of a point's value number `index`. */
Place placeOf(const Point &point, int index);

/** True when two points have a word of the controller in common. */
bool shareWords(const Point &left, const Point &right);

/**
 * Books every write that has come to its end. Only one that was given up is looked up in the
 * controller: its request may have arrived or not.
 */
class MemoryBook
{
public:
    /** The memory, as it is now, is the start; it stays the caller's. */
    explicit MemoryBook(const plc::Memory &memory);

    /** Books a write, and judges its words. */
    QVector<Finding> write(const Point &point, const QVector<int> &values, bool acknowledged);

    /** What the point's value number `index` must be. */
    int expected(const Point &point, int index) const { return valueIn(m_expected, point, index); }

    /** What the controller holds there. */
    int held(const Point &point, int index) const { return valueIn(m_memory, point, index); }

    /** Nothing when the word must have the value, or what that contradicts. */
    std::optional<Finding> judge(char device, int word, int value) const;

    /** Judges the whole memory. */
    QVector<Finding> judge() const;

private:
    static int valueIn(const plc::Memory &memory, const Point &point, int index);

    const plc::Memory &m_memory;
    const plc::Memory m_start;
    plc::Memory m_expected;
    plc::Memory m_writtenBits;  // by anyone, ever
};

}  // namespace host
