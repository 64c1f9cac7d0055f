// Compares places in the controller's memory.
#include "host/watch/coverage.h"

namespace host {

const QVector<Coverage::Covered> &Coverage::of(const Point &block)
{
    const auto known = m_known.find(block);
    if (known != m_known.cend())
        return known->second;
    QVector<Covered> covered;
    for (int tag = 0; tag < int(m_tags.size()); ++tag) {
        const Part part = partInside(m_tags[tag].point, block);
        if (part.count > 0)
            covered.append({tag, part});
    }
    return m_known[block] = covered;
}

}  // namespace host
