// The link's frames, as both directions use them: control bytes, hex digits, byte and 16-bit
// fields, checksum, and how much fits one frame.
#ifndef TOLVANE_WIRE_H
#define TOLVANE_WIRE_H

#include "tolvane_link.h"

enum ControlByte { STX = 0x02, ETX = 0x03, EOT = 0x04, ACK = 0x06 };

enum {
    WordChars = 4,          ///< characters of a word
    MaxWordsPerFrame = 127  ///< the byte count field holds words * 2 in one byte
};

/** The word that an address lies in: contacts and bits of words are 16 to the word. */
inline int firstWordOf(const RegisterType &type, int startAddr)
{
    return type.unitKind == WordUnit ? startAddr : wordOfBit(startAddr);
}

/** Upper-case hex digit of a nibble 0 to 15. */
inline unsigned char hexDigit(int nibble)
{
    return static_cast<unsigned char>(nibble <= 9 ? nibble + 0x30 : nibble + 0x37);
}

/**
 * The nibble a reply character stands for: digits and ":" to "?" count from "0", everything behind
 * "@" from "A" modulo 16, so that both letter cases are read; what lies below "0", and "@", is 0.
 */
inline unsigned char nibbleOf(unsigned char character)
{
    const int letterOffset = 9 * (character > 0x40);
    const int fromZeroOn = -(character >= 0x30);  // all bits, or none
    return static_cast<unsigned char>((character + letterOffset) & 0x0F & fromZeroOn);
}

/** The byte that the two characters at `pos` stand for, high nibble first. */
inline unsigned char asc2hex(const unsigned char *data, int pos)
{
    return static_cast<unsigned char>(nibbleOf(data[pos]) << 4 | nibbleOf(data[pos + 1]));
}

/** The checksum of a frame: the sum of `length` bytes, modulo 256. */
inline int frameChecksum(const unsigned char *bytes, int length)
{
    unsigned char sum = 0;
    for (int i = 0; i < length; ++i)
        sum = static_cast<unsigned char>(sum + bytes[i]);
    return sum;
}

/**
 * The data of a reply to a read frame as bytes, two a word, low byte first; `bytes` has room for
 * MaxWordsPerFrame words. Characters that the reply lacks count as 0. (reply.cpp)
 */
void readReplyBytes(const QByteArray &reply, const FRAME_PRO &request, unsigned char *bytes);

/** Writes a request frame in the order in which it travels. */
class FrameWriter
{
public:
    explicit FrameWriter(unsigned char *frame) : m_begin(frame), m_end(frame) {}

    void open(ControlByte control) { put(control); }
    void letter(int character) { put(character); }
    void text(const char *characters)
    {
        while (*characters)
            put(*characters++);
    }
    /** Two characters: high nibble, low nibble. */
    void byteField(int value)
    {
        put(hexDigit(value >> 4 & 0x0F));
        put(hexDigit(value & 0x0F));
    }
    /** Four characters: low byte, high byte. */
    void field16(int value)
    {
        byteField(value & 0xFF);
        byteField(value >> 8 & 0xFF);
    }
    /** Checksum of everything behind the opening byte, then `control`. */
    void close(ControlByte control)
    {
        byteField(frameChecksum(m_begin + 1, length() - 1));
        put(control);
    }
    int length() const { return static_cast<int>(m_end - m_begin); }

private:
    void put(int character) { *m_end++ = static_cast<unsigned char>(character); }

    unsigned char *m_begin;
    unsigned char *m_end;
};

#endif
