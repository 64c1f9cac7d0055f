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

int replyWord(const QByteArray &reply, int dataStart, int k)
{
    const int pos = dataStart + WordChars * k;
    return asc2hex(reply, pos) | asc2hex(reply, pos + ByteChars) << 8;
}

int replyBit(const QByteArray &reply, int dataStart, int n)
{
    return asc2hex(reply, dataStart + ByteChars * (n / 8)) >> n % 8 & 1;
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
