// Compares places in the controller's memory.
#include "host/watch/coverage.h"

namespace host {

const QVector<Coverage::Covered> &Coverage::of(const Point &block)
{
    const QString key = QStringLiteral("%1/%2:%3x%4")
                            .arg(block.stationNo)
                            .arg(block.regName)
                            .arg(block.address)
                            .arg(block.count);
    const auto known = m_known.constFind(key);
    if (known != m_known.constEnd())
        return *known;
    QVector<Covered> covered;
    for (int tag = 0; tag < int(m_tags.size()); ++tag) {
        const Part part = partInside(m_tags[tag].point, block);
        if (part.count > 0)
            covered.append({tag, part});
    }
    return *m_known.insert(key, covered);
}

}  // namespace host
