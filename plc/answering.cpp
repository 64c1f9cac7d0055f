// Judging requests and making replies, byte by byte as the link carries them.
#include "plc/answering.h"

#include <algorithm>

namespace plc {

namespace {

constexpr char STX = 0x02;  // opens a request
constexpr char ETX = 0x03;  // closes it
constexpr char ACK = 0x06;  // opens a reply
constexpr char EOT = 0x04;  // closes it

// STX command device | address 4 "00" | byte count 2, data of 127 words | checksum 2 ETX
constexpr int ShortestRequest = 14;
constexpr int LongestRequest = 14 + 127 * 4;
constexpr int BitRequest = 16;

bool isDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

QByteArray hex(const QByteArray &bytes)
{
    return bytes.toHex().toUpper();
}

/** The checksum characters for a frame's text between its opening byte and its checksum. */
QByteArray checksum(const QByteArray &text)
{
    unsigned sum = 0;
    for (char c : text)
        sum += static_cast<unsigned char>(c);
    return hex(QByteArray(1, char(sum & 0xFF)));
}

quint16 word(const QByteArray &bytes, int at)
{
    const auto byte = [&bytes](int i) { return static_cast<unsigned char>(bytes[i]); };
    return quint16(byte(at) | byte(at + 1) << 8);
}

bool isOneBit(unsigned mask)
{
    return mask != 0 && (mask & (mask - 1)) == 0;
}

/** Reads the frame of `request`, from STX to ETX, into the other fields; says what it is worth. */
Verdict judge(Request *request)
{
    const QByteArray &frame = request->frame;
    const int size = int(frame.size());
    if (size < ShortestRequest)
        return Verdict::Layout;
    if (checksum(frame.mid(1, size - 4)) != frame.mid(size - 3, 2))
        return Verdict::Checksum;

    request->command = frame[1];
    request->device = frame[2];
    if (!QByteArray(Controller::Commands).contains(request->command))
        return Verdict::Command;
    if (Memory::wordCount(request->device) == 0)
        return Verdict::Device;

    const QByteArray digits = frame.mid(3, size - 6);
    if (!std::all_of(digits.begin(), digits.end(), isDigit))
        return Verdict::Digits;
    if (digits.size() % 2 != 0 || digits.mid(4, 2) != "00")
        return Verdict::Layout;
    // Address low, address high, 0, then byte count and data, or the mask.
    const QByteArray fields = QByteArray::fromHex(digits);

    request->words = 1;
    if (request->command == 'o' || request->command == 'n') {
        if (size != BitRequest)
            return Verdict::Layout;
        request->mask = word(fields, 3);
        if (!isOneBit(request->command == 'o' ? request->mask : request->mask ^ 0xFFFFu))
            return Verdict::Mask;
    } else {
        const int byteCount = static_cast<unsigned char>(fields[3]);
        const int dataBytes = int(fields.size()) - 4;
        if (request->command == 'r' && dataBytes != 0)
            return Verdict::Layout;
        if (byteCount == 0 || byteCount % 2 != 0)
            return Verdict::ByteCount;
        if (request->command == 'w' && dataBytes != byteCount)
            return Verdict::ByteCount;
        request->words = byteCount / 2;
        for (int at = 4; at < int(fields.size()); at += 2)
            request->values.append(word(fields, at));
    }

    const int byteAddress = word(fields, 0);
    if (byteAddress % 2 != 0)
        return Verdict::OddAddress;
    request->word = byteAddress / 2;
    if (request->word + request->words > Memory::wordCount(request->device))
        return Verdict::BeyondDevice;
    return Verdict::Served;
}

}  // namespace

constexpr char Controller::Commands[];

const char *verdictName(Verdict verdict)
{
    static const std::array<const char *, VerdictCount> names = {
        "served", "unfinished", "too-long",   "layout",      "checksum",      "command",
        "device", "digits",     "byte-count", "odd-address", "beyond-device", "mask"};
    return names[size_t(verdict)];
}

QByteArray Controller::receive(const QByteArray &bytes)
{
    QByteArray replies;
    for (char byte : bytes)
        replies += receive(byte);
    return replies;
}

QByteArray Controller::receive(char byte)
{
    // All but the first and last byte of a request is printable, so an opening byte always opens.
    if (byte == STX) {
        silence();
        m_frame = QByteArray(1, STX);
        return QByteArray();
    }
    if (m_frame.isEmpty()) {
        ++m_counts.strayBytes;
        return QByteArray();
    }
    m_frame += byte;
    if (byte == ETX) {
        Request request = takeFrame();
        const Verdict verdict = judge(&request);
        return finish(verdict, request);
    }
    if (m_frame.size() == LongestRequest)
        finish(Verdict::TooLong, takeFrame());
    return QByteArray();
}

void Controller::silence()
{
    if (!m_frame.isEmpty())
        finish(Verdict::Unfinished, takeFrame());
}

/** Ends the request under way. */
Request Controller::takeFrame()
{
    Request request;
    request.frame.swap(m_frame);
    return request;
}

/** Counts a request, serves it when it is to be served, tells the observer; returns the reply. */
QByteArray Controller::finish(Verdict verdict, const Request &request)
{
    ++m_counts.verdicts[size_t(verdict)];
    QByteArray reply;
    if (verdict == Verdict::Served) {
        ++m_counts.served[size_t(QByteArray(Commands).indexOf(request.command))];
        reply = carryOut(request);
    }
    if (m_observer)
        m_observer(request, verdict, reply);
    return reply;
}

/** Serves a request that was found good: changes or reads the memory and returns the reply. */
QByteArray Controller::carryOut(const Request &request)
{
    QByteArray text(1, request.command);
    const quint16 old = m_memory.word(request.device, request.word);
    switch (request.command) {
        case 'r': {
            QByteArray data;
            for (int i = 0; i < request.words; ++i) {
                const quint16 value = m_memory.word(request.device, request.word + i);
                data += char(value & 0xFF);
                data += char(value >> 8);
            }
            text += hex(data);
            break;
        }
        case 'w':
            for (int i = 0; i < request.words; ++i)
                m_memory.setWord(request.device, request.word + i, request.values[i]);
            break;
        case 'o':
            m_memory.setWord(request.device, request.word, old | request.mask);
            break;
        case 'n':
            m_memory.setWord(request.device, request.word, old & request.mask);
            break;
    }
    return ACK + text + checksum(text) + EOT;
}

}  // namespace plc
