// What the controller's memory may hold, as far as a host can know that.
#pragma once

#include "host/driver/address.h"
#include "host/soak/finding.h"
#include "host/soak/memory_image.h"

#include <QtCore/QVector>

#include <optional>

namespace host {

/** True when two points have a word of the controller in common. */
bool shareWords(const Point &left, const Point &right);

/**
 * Keeps for each word the values that it may have. That is one value, until a write of it was given
 * up: then the request or only its reply was lost, and the word holds the old value or the new one.
 */
class MemoryModel
{
public:
    explicit MemoryModel(const MemoryImage &start) : m_start(start) {}

    /** The controller has executed a write; without `certain` it may have. */
    void write(const Point &point, const QVector<int> &values, bool certain);

    /** True when the point's value number `index` may be that. */
    bool allows(const Point &point, int index, int value) const;

    /** Nothing when the word may hold the value, or what that contradicts. */
    std::optional<Finding> judge(const WordAddress &address, int value) const;

    /** Judges the whole memory. */
    QVector<Finding> judge(const MemoryImage &memory) const;

private:
    struct Word
    {
        QVector<int> possible;
        int writtenBits = 0;  // by anyone, ever
    };

    Word wordAt(const WordAddress &address) const;

    MemoryImage m_start;
    QMap<WordAddress, Word> m_written;  // the other words are as they were at the start
};

}  // namespace host
