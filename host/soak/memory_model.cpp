// The possible values of the words that were written.
#include "host/soak/memory_model.h"

#include <QtCore/QStringList>

#include <algorithm>

namespace host {

namespace {

QString wordText(int value)
{
    return "0x%1"_s.arg(value, 4, 16, QLatin1Char('0'));
}

QString bitList(int bits)
{
    QStringList numbers;
    for (int bit = 0; bit < BitsPerWord; ++bit)
        if (bits >> bit & 1)
            numbers.append(QString::number(bit));
    return numbers.join(QLatin1Char(' '));
}

}  // namespace

bool shareWords(const Point &left, const Point &right)
{
    return placeOf(left, 0).word <= placeOf(right, right.count - 1).word &&
           placeOf(right, 0).word <= placeOf(left, left.count - 1).word;
}

MemoryModel::Word MemoryModel::wordAt(const WordAddress &address) const
{
    const auto written = m_written.constFind(address);
    return written != m_written.cend() ? *written : Word{{m_start.value(address)}, 0};
}

void MemoryModel::write(const Point &point, const QVector<int> &values, bool certain)
{
    // The bits that one write puts into a word get there together or not at all.
    QMap<WordAddress, QPair<int, int>> changes;  // mask and bits
    for (int i = 0; i < point.count; ++i) {
        const Place place = placeOf(point, i);
        QPair<int, int> &change = changes[place.word];
        change.first |= place.mask;
        change.second |= values[i] << place.shift;
    }
    for (auto change = changes.cbegin(); change != changes.cend(); ++change) {
        Word word = wordAt(change.key());
        QVector<int> possible = certain ? QVector<int>() : word.possible;
        for (const int before : std::as_const(word.possible)) {
            const int after = (before & ~change->first) | change->second;
            if (!possible.contains(after))
                possible.append(after);
        }
        m_written[change.key()] = {possible, word.writtenBits | change->first};
    }
}

bool MemoryModel::allows(const Point &point, int index, int value) const
{
    const Place place = placeOf(point, index);
    const QVector<int> possible = wordAt(place.word).possible;
    return std::any_of(possible.cbegin(), possible.cend(),
                       [&](int word) { return (word & place.mask) == value << place.shift; });
}

std::optional<Finding> MemoryModel::judge(const WordAddress &address, int value) const
{
    const Word word = wordAt(address);
    if (word.possible.contains(value))
        return std::nullopt;
    const QString name = "%1 word %2"_s.arg(address.first).arg(address.second);
    const int start = m_start.value(address);
    const int strangeBits = (value ^ start) & ~word.writtenBits;
    if (strangeBits)
        return Finding{Claim::Untouched,
                       "%1 is %2: bits %3 changed, first %4"_s.arg(
                           name, wordText(value), bitList(strangeBits), wordText(start))};
    QStringList expected;
    for (const int possible : word.possible)
        expected.append(wordText(possible));
    return Finding{Claim::Kept,
                   "%1 is %2 instead of %3"_s.arg(name, wordText(value), expected.join(" or "_s))};
}

QVector<Finding> MemoryModel::judge(const MemoryImage &memory) const
{
    QMap<WordAddress, int> all = memory;
    for (auto word = m_start.cbegin(); word != m_start.cend(); ++word)
        all.insert(word.key(), memory.value(word.key()));
    for (auto word = m_written.cbegin(); word != m_written.cend(); ++word)
        all.insert(word.key(), memory.value(word.key()));

    QVector<Finding> findings;
    for (auto word = all.cbegin(); word != all.cend(); ++word)
        if (const auto finding = judge(word.key(), word.value()))
            findings.append(*finding);
    return findings;
}

}  // namespace host
