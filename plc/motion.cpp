// The table of moving words.
#include "plc/motion.h"
#include "plc/literals.h"

#include <cmath>

namespace plc {

namespace {

struct MovingWord
{
    char device;
    int word;
    quint16 mask;  ///< the bits that move
    const char *help;
    quint16 (*at)(qint64 ms);
};

/** All ones and all zeros in turn, starting with zeros. */
quint16 square(qint64 ms, qint64 halfPeriodMs)
{
    return ms / halfPeriodMs % 2 != 0 ? 0xFFFF : 0;
}

quint16 sine(qint64 ms)
{
    const double phase = 2 * 3.14159265358979 * double(ms % 10000) / 10000;
    return quint16(std::lround(1000 * std::sin(phase)));
}

const MovingWord movingWords[] = {
    {'a', 100, 0xFFFF, "D 100         counts up every 100 ms, from 65535 on to 0",
     [](qint64 ms) { return quint16(ms / 100); }},
    {'a', 101, 0xFFFF, "D 101         a sine from -1000 to 1000 in 10 s", sine},
    {'i', 0, 0x0001, "M 0.0         a bit that changes every second",
     [](qint64 ms) { return square(ms, 1000); }},
    {'l', 0, 0x0001, "TX 0          a contact that changes every 500 ms",
     [](qint64 ms) { return square(ms, 500); }},
};

}  // namespace

void move(Memory &memory, qint64 elapsedMs)
{
    for (const MovingWord &moving : movingWords) {
        const unsigned rest = memory.word(moving.device, moving.word) & ~unsigned(moving.mask);
        const unsigned moved = moving.at(elapsedMs) & moving.mask;
        memory.setWord(moving.device, moving.word, quint16(rest | moved));
    }
}

QString motionHelp()
{
    QString text;
    for (const MovingWord &moving : movingWords)
        text += "  "_s + QLatin1String(moving.help) + QLatin1Char('\n');
    return text;
}

}  // namespace plc
