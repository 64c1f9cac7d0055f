// Images of simulated and of real controllers.
#include "host/soak/memory_image.h"

#include "host/output/failure.h"
#include "host/output/interrupt.h"

namespace host {

namespace {

constexpr std::chrono::seconds ReadPatience(60);

}  // namespace

Place placeOf(const Point &point, int index)
{
    const QString device = memoryArea(point.regName);
    const int address = point.address + index;
    if (!point.isBit)
        return {{device, address}, 0, 0xFFFF};
    const int bit = address % BitsPerWord;
    return {{device, address / BitsPerWord}, bit, 1 << bit};
}

void storeImage(const MemoryImage &image, plc::Memory &memory)
{
    for (auto word = image.cbegin(); word != image.cend(); ++word) {
        const QString &device = word.key().first;
        memory.setWord(plc::Memory::letter(device.toLatin1()), word.key().second,
                       quint16(word.value()));
    }
}

MemoryImage imageOf(const plc::Memory &memory)
{
    MemoryImage image;
    for (const char device : plc::Memory::devices()) {
        const QString name = QString::fromLatin1(plc::Memory::name(device));
        for (int word = 0; word < plc::Memory::wordCount(device); ++word)
            if (const int value = memory.word(device, word))
                image[{name, word}] = value;
    }
    return image;
}

MemoryImage readImage(const Driver &driver, Session &session, Line &line,
                      const LoopSettings &settings, const QVector<Point> &points)
{
    session.conditionReadEnded = nullptr;
    Loop loop(driver, line, settings);
    MemoryImage image;
    for (const Point &point : points) {
        session.restart();
        session.readOnce(point);
        const bool done = loop.runUntilIdle(ReadPatience);
        if (interrupted())
            throw Failure("interrupted while the controller's memory was read"_s);
        if (!done || loop.counters().errors > 0)
            throw Failure(
                "the controller's memory cannot be read: %1 of %2 words "
                "or bits from number %3 on"_s.arg(point.regName)
                    .arg(point.count)
                    .arg(point.address));
        const QVector<int> values = session.values(point);
        for (int i = 0; i < values.size(); ++i) {
            const Place place = placeOf(point, i);
            image[place.word] |= values[i] << place.shift;
        }
    }
    session.restart();
    return image;
}

}  // namespace host
