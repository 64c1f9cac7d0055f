// Judging replies and taking values out of them.
//
// Read reply:      ACK <any byte> <four characters a word, low byte first> <checksum> EOT
// Acknowledgement: ACK <any byte> <checksum> EOT
#include "wire.h"

namespace {

/** ACK, checksum and EOT: the shortest reply that can be judged. */
enum { ShortestReply = 4 };

}  // namespace

int check_rcv_data(const unsigned char *reply, int length)
{
    const FRAME_PRO &request = driver.frameList.at(0);
    if (request.replyLen <= ShortestReply || length < ShortestReply)
        return FailedExchange;
    if (reply[0] != ACK || reply[length - 1] != EOT)
        return FailedExchange;
    const int checksum = frameChecksum(reply + 1, length - ShortestReply);
    if (reply[length - 3] != hexDigit(checksum >> 4) ||
        reply[length - 2] != hexDigit(checksum & 0x0F))
        return FailedExchange;
    return request.readCount != 0 ? GoodReadReply : GoodAcknowledgement;
}

void readReplyWords(const QByteArray &reply, int dataStart, int count, ReplyWords &words)
{
    // Two plain loops over data without a gap: compilers do many characters at a time.
    unsigned char nibbles[MaxWordsPerFrame * WordChars];
    const int length = count * WordChars;
    const int present = qBound(0, int(reply.size()) - dataStart, length);
    std::memcpy(nibbles, reply.constData() + dataStart, size_t(present));
    std::memset(nibbles + present, '0', size_t(length - present));
    for (int i = 0; i < length; ++i)
        nibbles[i] = nibbleOf(nibbles[i]);
    for (int k = 0; k < count; ++k) {
        const unsigned char *nibble = nibbles + WordChars * k;
        words.word[k] = quint16(nibble[0] << 4 | nibble[1] | nibble[2] << 12 | nibble[3] << 8);
    }
}

int allMix_GetDataStartPosition(const QByteArray &, const QList<VARIABLE> &, int i)
{
    const int dataStart = driver.frameList.value(driver.frameIndex).dataStart;
    if (i == 0 || driver.itemsInFrame < 1)
        return dataStart;
    return dataStart + WordChars * qMin(i, driver.itemsInFrame);
}

int allMix_GetRecvLenFromReadList(const QList<VARIABLE> &)
{
    return 0;
}
