// The request frames, each written as it travels.
#include "wire.h"

namespace {

/** Characters of a reply around its data: ACK, one byte, checksum, EOT. */
enum { ReplyFrameChars = 5, ReplyDataStart = 2 };

/** Appends a frame without a request and returns it, to be written where it stands. */
FRAME_PRO &appendFrame(const VARIABLE &item)
{
    static const FRAME_PRO blank;
    driver.loop.frameList.append(blank);
    driver.loop.frameList.last().var = item;
    return driver.loop.frameList.last();
}

/** Items are of known types. */
const RegisterType &knownType(const QString &name)
{
    return driver.registerTypes.at(getIndexFromRegName(name));
}

/** Opening of every request: STX command device <byte address> "00". */
void openRequest(FrameWriter &out, char command, const RegisterType &type, int startAddr)
{
    out.open(STX);
    out.letter(command);
    out.letter(ADDRESS_RW_COMMAND[type.number].at(0).toLatin1());
    out.field16(firstWordOf(type, startAddr) * 2);
    out.text("00");
}

/** Read words: STX r device <byte address> "00" <byte count> <checksum> ETX. */
void appendReadWords(const RegisterType &type, int words, const VARIABLE &item)
{
    Q_ASSERT(words >= 1 && words <= MaxWordsPerFrame);
    FRAME_PRO &frame = appendFrame(item);
    FrameWriter out(frame.frame);
    openRequest(out, 'r', type, item.startAddr);
    out.byteField(words * 2);
    out.close(ETX);
    frame.sendLen = out.length();
    frame.replyLen = words * WordChars + ReplyFrameChars;
    frame.dataStart = ReplyDataStart;
    frame.readCount = words;
}

/**
 * Write words: STX w device <byte address> "00" <byte count> <data> <checksum> ETX, where data is
 * four characters a word, low byte first. `values`: two bytes a word, low byte first.
 */
void appendWriteWords(const RegisterType &type, int words, const unsigned char *values,
                      const VARIABLE &item)
{
    Q_ASSERT(words >= 1 && words <= MaxWordsPerFrame);
    FRAME_PRO &frame = appendFrame(item);
    FrameWriter out(frame.frame);
    openRequest(out, 'w', type, item.startAddr);
    out.byteField(words * 2);
    for (int i = 0; i < words * 2; ++i)
        out.byteField(values[i]);
    out.close(ETX);
    frame.sendLen = out.length();
    frame.replyLen = ReplyFrameChars;
}

/**
 * Set or clear one bit: STX o|n device <byte address> "00" <mask> <checksum> ETX. The mask of "o"
 * is ORed to the word, that of "n" is ANDed.
 */
void appendBit(const RegisterType &type, const VARIABLE &item)
{
    const bool set = item.valueBuf[0] != 0;
    const int bitMask = 1 << bitInWord(item.startAddr);
    FRAME_PRO &frame = appendFrame(item);
    FrameWriter out(frame.frame);
    openRequest(out, set ? 'o' : 'n', type, item.startAddr);
    out.field16(set ? bitMask : ~bitMask & 0xFFFF);
    out.close(ETX);
    frame.sendLen = out.length();
    frame.replyLen = ReplyFrameChars;
}

}  // namespace

void getReadFrame(const VARIABLE &item)
{
    appendReadWords(knownType(item.regName), item.count, item);
}

void getWriteFrame(const VARIABLE &item)
{
    const RegisterType &type = knownType(item.regName);
    if (type.unitKind == WordUnit)
        appendWriteWords(type, item.count, item.valueBuf, item);
    else if (item.count == 1)
        appendBit(type, item);
    else
        appendReadWords(type, wordsOfBits(item.startAddr, item.count), item);
}

void appendMergedWrite(const QByteArray &reply, const RegisterType &type)
{
    const VARIABLE item = driver.loop.frameList.at(0).var;
    const int words = driver.loop.frameList.at(0).readCount;
    unsigned char values[2 * MaxWordsPerFrame];
    readReplyBytes(reply, driver.loop.frameList.at(0), values);
    for (int i = 0; i < item.count; ++i) {
        const int position = bitInWord(item.startAddr) + i;
        const int bitMask = 1 << position % 8;
        unsigned char &byte = values[position / 8];
        byte = static_cast<unsigned char>(item.valueBuf[i] ? byte | bitMask : byte & ~bitMask);
    }
    appendWriteWords(type, words, values, item);
}
