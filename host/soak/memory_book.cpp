// Three more memories of the controller's kind: at the start, as it must be, and what was written.
#include "host/soak/memory_book.h"

#include "plc/literals.h"

#include <QtCore/QMap>
#include <QtCore/QStringList>

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

Place placeOf(const Point &point, int index)
{
    const char device = plc::Memory::letter(memoryArea(point.regName).toLatin1());
    const int address = point.address + index;
    if (!point.isBit)
        return {device, address, 0, 0xFFFF};
    const int bit = address % BitsPerWord;
    return {device, address / BitsPerWord, bit, 1 << bit};
}

bool shareWords(const Point &left, const Point &right)
{
    return placeOf(left, 0).device == placeOf(right, 0).device &&
           placeOf(left, 0).word <= placeOf(right, right.count - 1).word &&
           placeOf(right, 0).word <= placeOf(left, left.count - 1).word;
}

MemoryBook::MemoryBook(const plc::Memory &memory)
    : m_memory(memory), m_start(memory), m_expected(memory)
{
}

int MemoryBook::valueIn(const plc::Memory &memory, const Point &point, int index)
{
    const Place place = placeOf(point, index);
    return (memory.word(place.device, place.word) & place.mask) >> place.shift;
}

QVector<Finding> MemoryBook::write(const Point &point, const QVector<int> &values,
                                   bool acknowledged)
{
    // The bits that one write puts into a word get there together or not at all.
    struct Change
    {
        int mask = 0;
        int bits = 0;
    };
    QMap<int, Change> changes;  // by word
    for (int i = 0; i < point.count; ++i) {
        const Place place = placeOf(point, i);
        changes[place.word].mask |= place.mask;
        changes[place.word].bits |= values[i] << place.shift;
    }
    const char device = placeOf(point, 0).device;
    QVector<Finding> findings;
    for (auto change = changes.cbegin(); change != changes.cend(); ++change) {
        const int word = change.key();
        const int held = m_memory.word(device, word);
        const int after = (m_expected.word(device, word) & ~change->mask) | change->bits;
        if (acknowledged || held == after)
            m_expected.setWord(device, word, quint16(after));
        m_writtenBits.setWord(device, word,
                              quint16(m_writtenBits.word(device, word) | change->mask));
        if (const auto finding = judge(device, word, held))
            findings.append(*finding);
    }
    return findings;
}

std::optional<Finding> MemoryBook::judge(char device, int word, int value) const
{
    const int expected = m_expected.word(device, word);
    if (value == expected)
        return std::nullopt;
    const QString text = "%1 word %2 is %3"_s.arg(QLatin1String(plc::Memory::name(device)))
                             .arg(word)
                             .arg(wordText(value));
    const int start = m_start.word(device, word);
    const int strangeBits = (value ^ start) & ~m_writtenBits.word(device, word);
    if (strangeBits)
        return Finding{Claim::Untouched, "%1: bits %2 changed, first %3"_s.arg(
                                             text, bitList(strangeBits), wordText(start))};
    return Finding{Claim::Kept, "%1 instead of %2"_s.arg(text, wordText(expected))};
}

QVector<Finding> MemoryBook::judge() const
{
    QVector<Finding> findings;
    for (const char device : plc::Memory::devices())
        for (int word = 0; word < plc::Memory::wordCount(device); ++word)
            if (const auto finding = judge(device, word, m_memory.word(device, word)))
                findings.append(*finding);
    return findings;
}

}  // namespace host
