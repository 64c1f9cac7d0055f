// The request frames, each written as it travels.
#include "wire.h"

namespace {

/** Where the data characters of a write-words frame begin. */
enum { WriteDataStart = 11 };

/** Characters of a reply around its data: ACK, one byte, checksum, EOT. */
enum { ReplyFrameChars = 5, ReplyDataStart = 2 };

bool fitsFrame(int words)
{
    return words >= 1 && words <= MaxWordsPerFrame;
}

int deviceLetter(const RegisterType &type)
{
    return ADDRESS_RW_COMMAND[type.number].at(0).toLatin1();
}

/** Opening of every request: STX command device <byte address> "00". */
void openRequest(FrameWriter &out, char command, int device, int wordNumber)
{
    out.open(STX);
    out.letter(command);
    out.letter(device);
    out.field16(int(quint32(wordNumber) * 2));
    out.text("00");
}

/** Read words: STX r device <byte address> "00" <byte count> <checksum> ETX. */
void appendReadWords(int device, int wordNumber, int words, const VARIABLE &item)
{
    FRAME_PRO frame(item);
    FrameWriter out(frame.frame);
    openRequest(out, 'r', device, wordNumber);
    out.byteField(words * 2);
    out.close(ETX);
    frame.sendLen = out.length();
    frame.replyLen = words * WordChars + ReplyFrameChars;
    frame.dataStart = ReplyDataStart;
    frame.readCount = words;
    driver.frameList.append(frame);
}

/**
 * Write words: STX w device <byte address> "00" <byte count> <data> <checksum> ETX, where data is
 * four characters a word, low byte first.
 */
void appendWriteWords(int device, int wordNumber, int words, const unsigned char *values,
                      const VARIABLE &item)
{
    FRAME_PRO frame(item);
    FrameWriter out(frame.frame);
    openRequest(out, 'w', device, wordNumber);
    out.byteField(words * 2);
    for (int i = 0; i < words * 2; ++i)
        out.byteField(values[i]);
    out.close(ETX);
    frame.sendLen = out.length();
    frame.replyLen = ReplyFrameChars;
    driver.frameList.append(frame);
}

/**
 * Set or clear one bit: STX o|n device <byte address> "00" <mask> <checksum> ETX. The mask of "o"
 * is ORed to the word, that of "n" is ANDed.
 */
void appendBit(int device, bool set, const VARIABLE &item)
{
    const int bitMask = 1 << bitInWord(item.startAddr);
    FRAME_PRO frame(item);
    FrameWriter out(frame.frame);
    openRequest(out, set ? 'o' : 'n', device, wordOfBit(item.startAddr));
    out.field16(set ? bitMask : ~bitMask & 0xFFFF);
    out.close(ETX);
    frame.sendLen = out.length();
    frame.replyLen = ReplyFrameChars;
    driver.frameList.append(frame);
}

}  // namespace

void handShakeFrame()
{
    driver.frameList.append(FRAME_PRO());
}

int getReadFrame(const QList<VARIABLE> &items)
{
    if (!items.isEmpty()) {
        const VARIABLE &item = items.first();
        const RegisterType type = registerType(item.regName);
        if (type.isKnown() && fitsFrame(item.count)) {
            const int wordNumber =
                type.unitKind == WordUnit ? item.startAddr : wordOfBit(item.startAddr);
            appendReadWords(deviceLetter(type), wordNumber, item.count, item);
        }
    }
    return 1;
}

void getWriteFrame(const VARIABLE &item)
{
    const RegisterType type = registerType(item.regName);
    if (!type.isKnown())
        return;
    const int device = deviceLetter(type);
    if (type.unitKind == WordUnit) {
        if (fitsFrame(item.count))
            appendWriteWords(device, item.startAddr, item.count, item.valueBuf, item);
    } else if (item.count == 1) {
        appendBit(device, item.valueBuf[0] != 0, item);
    } else if (item.count > 1 && item.count <= MaxBitsPerWrite) {
        const int wordNumber = wordOfBit(item.startAddr);
        const int words = wordsOfBits(item.startAddr, item.count);
        static const unsigned char notYetRead[MaxWordsPerFrame * 2] = {0};
        appendReadWords(device, wordNumber, words, item);
        appendWriteWords(device, wordNumber, words, notYetRead, item);
    }
}

void mergeBitsIntoWrite(const QByteArray &reply)
{
    if (driver.frameList.size() < 2)
        return;
    const FRAME_PRO &readFrame = driver.frameList.at(0);
    FRAME_PRO &writeFrame = driver.frameList[1];
    const VARIABLE &item = readFrame.var;

    ReplyWords words;
    readReplyWords(reply, readFrame.dataStart, readFrame.readCount, words);
    for (int i = 0; i < item.count; ++i) {
        const int position = bitInWord(item.startAddr) + i;
        const int bitMask = 1 << position % BitsPerWord;
        quint16 &word = words.word[position / BitsPerWord];
        word = quint16(item.valueBuf[i] ? word | bitMask : word & ~bitMask);
    }

    FrameWriter out(writeFrame.frame);
    out.skip(WriteDataStart);
    for (int k = 0; k < readFrame.readCount; ++k)
        out.field16(words.word[k]);
    out.close(ETX);
}

quint16 computate_check(const quint8 *bytes, quint16 length)
{
    unsigned sum = 0;
    for (int i = 0; i < length; ++i)
        sum += bytes[i];
    return static_cast<quint16>(sum);
}
