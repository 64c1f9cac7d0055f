// Which of the watched words and bits a request reads.
#pragma once

#include "host/tags/tags.h"

#include <map>

namespace host {

/** Which parts of a list of tags a block reads, worked out once for each block asked for. */
class Coverage
{
public:
    struct Covered
    {
        int tag;  ///< place in the list
        Part part;
    };

    explicit Coverage(const QVector<Tag> &tags) : m_tags(tags) {}

    /** The tags that the block reads, with the part of each. */
    const QVector<Covered> &of(const Point &block);

private:
    QVector<Tag> m_tags;
    std::map<Point, QVector<Covered>, RangeOrder> m_known;  // by block
};

}  // namespace host
