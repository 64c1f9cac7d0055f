// Reads link frames for people: a cursor over the bytes that remembers the first fault.
#include "host/frames/frame_text.h"

#include "host/frames/wire.h"
#include "host/output/table.h"

#include <QtCore/QStringList>

#include <algorithm>

namespace host {

namespace {

constexpr int BitsPerWord = 16;

struct Device
{
    char letter;
    const char *name;
    bool holdsBits;  // words of bit memory are read as hex, numbers as decimals
};

constexpr Device Devices[] = {
    {'a', "D", false}, {'b', "T", false}, {'c', "C", false}, {'h', "P", true},  {'i', "M", true},
    {'j', "L", true},  {'k', "K", true},  {'l', "TX", true}, {'m', "CX", true}, {'n', "F", true},
    {'o', "S", false}, {'p', "N", false}, {'s', "Z", false},
};

QString valuesText(const QVector<int> &words, bool asHex, int maxValues)
{
    QStringList texts;
    for (const int word : words.mid(0, maxValues))
        texts.append(asHex ? "0x"_s + hexPair(char(word >> 8)) + hexPair(char(word))
                           : QString::number(word));
    return texts.join(", "_s) + (words.size() > maxValues ? ", ..."_s : QString());
}

// Walks a frame in the order in which it travels. After a fault nothing more is read.
class Cursor
{
public:
    Cursor(const QByteArray &frame, FrameReading &reading) : m_frame(frame), m_reading(reading) {}

    int position() const { return m_position; }
    int remaining() const { return int(m_frame.size()) - m_position; }
    bool good() const { return m_reading.fault.isEmpty(); }

    void fail(int at, const QString &fault)
    {
        if (!good())
            return;
        m_reading.fault = fault;
        m_reading.faultAt = at;
    }

    char take()
    {
        if (good() && remaining() < 1)
            fail(m_position, "the frame ends too early"_s);
        return good() ? m_frame[m_position++] : '\0';
    }

    void expect(char byte, const char *name)
    {
        const int at = m_position;
        const char found = take();
        if (found != byte)
            fail(at, "expected %1 (%2), found %3"_s.arg(QLatin1String(name), hexPair(byte),
                                                        hexPair(found)));
    }

    int byteField()
    {
        const int high = digit();
        return high * 16 + digit();
    }

    int field16()  // low byte first
    {
        const int low = byteField();
        return low + 256 * byteField();
    }

    // The checksum covers what lies between the opening byte and itself.
    void close(char last, const char *lastName)
    {
        const int at = m_position;
        const char sum = checksumOf(m_frame, at);
        const char found = static_cast<char>(byteField());
        if (found != sum)
            fail(at, "checksum %1, but the bytes add up to %2"_s.arg(hexPair(found), hexPair(sum)));
        expect(last, lastName);
        if (remaining() > 0)
            fail(m_position, countText(remaining(), "byte") + " too many"_s);
    }

private:
    int digit()
    {
        const int at = m_position;
        const char found = take();
        if (found >= '0' && found <= '9')
            return found - '0';
        if (found >= 'A' && found <= 'F')
            return found - 'A' + 10;
        fail(at, "expected a digit 0-9 or A-F, found %1"_s.arg(hexPair(found)));
        return 0;
    }

    const QByteArray &m_frame;
    FrameReading &m_reading;
    int m_position = 0;
};

const Device *takeDevice(Cursor &in)
{
    const int at = in.position();
    const char letter = in.take();
    const auto *device = std::find_if(std::begin(Devices), std::end(Devices),
                                      [&](const Device &known) { return known.letter == letter; });
    if (device != std::end(Devices))
        return device;
    in.fail(at, "unknown device letter %1"_s.arg(hexPair(letter)));
    return nullptr;
}

int takeEven(Cursor &in, int (Cursor::*field)(), const char *what)
{
    const int at = in.position();
    const int bytes = (in.*field)();
    if (bytes % 2)
        in.fail(at, "%1 %2 is odd"_s.arg(QLatin1String(what)).arg(bytes));
    return bytes;
}

QString bitsText(const char *verb, int mask, const QString &device, int word)
{
    QStringList bits;
    for (int bit = 0; bit < BitsPerWord; ++bit)
        if (mask >> bit & 1)
            bits.append(QString::number(bit));
    const QString which = bits.isEmpty()     ? "no bit"_s
                          : bits.size() == 1 ? "bit "_s + bits.first()
                                             : "bits "_s + bits.join(QLatin1Char(' '));
    return "%1 %2 of %3 word %4"_s.arg(QLatin1String(verb), which, device).arg(word);
}

// What a request asks for, as far as a reply to it must be known.
struct Asked
{
    char command = '\0';
    int words = 0;
    const Device *device = nullptr;
};

FrameReading readRequest(const QByteArray &frame, int maxValues, Asked &asked)
{
    FrameReading reading;
    Cursor in(frame, reading);
    in.expect(Stx, "STX");
    const int commandAt = in.position();
    asked.command = in.take();
    if (!QByteArray("rwon").contains(asked.command))
        in.fail(commandAt, "unknown command %1"_s.arg(hexPair(asked.command)));
    asked.device = takeDevice(in);
    const int word = takeEven(in, &Cursor::field16, "byte address") / 2;
    in.expect('0', "0");
    in.expect('0', "0");

    const QString device = QLatin1String(asked.device ? asked.device->name : "");
    if (asked.command == 'o' || asked.command == 'n') {
        const int mask = in.field16();
        reading.text = asked.command == 'o' ? bitsText("set", mask, device, word)
                                            : bitsText("clear", ~mask & 0xFFFF, device, word);
    } else {
        asked.words = takeEven(in, &Cursor::byteField, "byte count") / 2;
        const bool writes = asked.command == 'w';
        for (int i = 0; writes && i < asked.words && in.good(); ++i)
            reading.words.append(in.field16());
        reading.text = "%1 %2 of %3 from word %4"_s
                           .arg(QLatin1String(writes ? "write" : "read"),
                                countText(asked.words, "word"), device)
                           .arg(word);
        if (writes && asked.device)
            reading.text += ": "_s + valuesText(reading.words, asked.device->holdsBits, maxValues);
    }
    if (!in.good())
        reading.text.clear();  // a half-read sentence would mislead
    in.close(Etx, "ETX");
    return reading;
}

}  // namespace

FrameReading readRequest(const QByteArray &frame, int maxValues)
{
    Asked asked;
    return readRequest(frame, maxValues, asked);
}

FrameReading readReply(const QByteArray &frame, const QByteArray &request, int maxValues)
{
    Asked asked;
    const bool known = !request.isEmpty() && readRequest(request, 0, asked).fault.isEmpty();

    FrameReading reading;
    if (frame.isEmpty())
        return {"no reply"_s, {}, "no reply"_s, 0};
    Cursor in(frame, reading);
    in.expect(Ack, "ACK");
    in.take();
    const int dataBytes = int(frame.size()) - ShortestReply;
    if (dataBytes < 0)
        in.fail(int(frame.size()), "the frame ends too early"_s);
    if (known && dataBytes != asked.words * 4 * (asked.command == 'r'))
        in.fail(in.position(),
                countText(dataBytes, "byte") + " of data: not the answer to this request"_s);
    if (dataBytes % 4)
        in.fail(in.position(), "%1 bytes of data are no words"_s.arg(dataBytes));
    for (int i = 0; i < dataBytes / 4 && in.good(); ++i)
        reading.words.append(in.field16());
    if (in.good())
        reading.text =
            dataBytes == 0
                ? "acknowledged"_s
                : "%1: %2"_s.arg(
                      countText(reading.words.size(), "word"),
                      valuesText(reading.words, known && asked.device->holdsBits, maxValues));
    in.close(Eot, "EOT");
    return reading;
}

QString checksumText(const QByteArray &frame)
{
    const int at = int(frame.size()) - ClosingBytes;
    if (at < ShortestReply - ClosingBytes)
        return "no checksum: the frame is too short"_s;
    const QByteArray found = frame.mid(at, 2);
    const QString sum = hexPair(checksumOf(frame, at));
    if (found == sum.toLatin1())
        return "checksum %1: right"_s.arg(sum);
    return "checksum bytes %1: wrong, the bytes before add up to %2 (%3)"_s.arg(
        hexText(found, 2), sum, hexText(sum.toLatin1(), 2));
}

QByteArray blankReply(const QByteArray &request)
{
    Asked asked;
    readRequest(request, 0, asked);
    QByteArray reply;
    reply += Ack;
    reply += asked.command;
    reply += QByteArray(4 * asked.words * (asked.command == 'r'), '0');
    reply += hexPair(checksumOf(reply, int(reply.size()))).toLatin1();
    reply += Eot;
    return reply;
}

QString hexText(const QByteArray &bytes, int maxBytes)
{
    if (bytes.size() <= maxBytes)
        return QString::fromLatin1(bytes.toHex(' ').toUpper());
    const int head = std::max(0, maxBytes - ClosingBytes - 2);
    return "%1 .. %2"_s.arg(hexText(bytes.left(head), head),
                            hexText(bytes.right(ClosingBytes), ClosingBytes));
}

}  // namespace host
