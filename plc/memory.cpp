// The devices' letters, names and sizes, and the words behind them.
#include "plc/memory.h"

namespace plc {

namespace {

struct Device
{
    char letter;
    const char *name;
    int words;
};

// TX and CX have 2,048 contacts, 128 words. A host that asks for the n contacts from number a on
// reads n words from word a / 16 on, of which it uses the first bits; with a word per contact,
// every such read is answered, up to the last contacts with the longest read (127 words).
const Device table[] = {
    {'h', "P", 2048},  {'i', "M", 2048},  {'j', "L", 11264}, {'k', "K", 4096}, {'n', "F", 2048},
    {'a', "D", 32768}, {'o', "S", 128},   {'b', "T", 2048},  {'c', "C", 2048}, {'p', "N", 21504},
    {'s', "Z", 128},   {'l', "TX", 2048}, {'m', "CX", 2048},
};
const int DeviceCount = sizeof table / sizeof table[0];

/** The table's index of a letter, or -1. */
int indexOf(char letter)
{
    for (int i = 0; i < DeviceCount; ++i) {
        if (table[i].letter == letter)
            return i;
    }
    return -1;
}

}  // namespace

Memory::Memory()
{
    for (const Device &device : table)
        m_words.push_back(QVector<quint16>(device.words, 0));
}

QByteArray Memory::devices()
{
    QByteArray letters;
    for (const Device &device : table)
        letters += device.letter;
    return letters;
}

int Memory::wordCount(char device)
{
    const int index = indexOf(device);
    return index < 0 ? 0 : table[index].words;
}

QByteArray Memory::name(char device)
{
    const int index = indexOf(device);
    return index < 0 ? QByteArray() : QByteArray(table[index].name);
}

char Memory::letter(const QByteArray &name)
{
    for (const Device &device : table) {
        if (name == device.name)
            return device.letter;
    }
    return 0;
}

quint16 Memory::word(char device, int number) const
{
    const int index = indexOf(device);
    return index < 0 ? quint16(0) : m_words[size_t(index)].value(number);
}

void Memory::setWord(char device, int number, quint16 value)
{
    if (number >= 0 && number < wordCount(device))
        m_words[size_t(indexOf(device))][number] = value;
}

}  // namespace plc
