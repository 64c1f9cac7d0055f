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
    const FRAME_PRO &request = driver.loop.frameList.at(0);
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

void readReplyBytes(const QByteArray &reply, const FRAME_PRO &request, unsigned char *bytes)
{
    const unsigned char *data =
        reinterpret_cast<const unsigned char *>(reply.constData()) + request.dataStart;
    unsigned char filledUp[MaxWordsPerFrame * WordChars];
    const int length = request.readCount * WordChars;
    const int present = qBound(0, int(reply.size()) - request.dataStart, length);
    if (present < length) {
        std::memcpy(filledUp, data, size_t(present));
        std::memset(filledUp + present, '0', size_t(length - present));
        data = filledUp;
    }
    for (int i = 0; i < length / 2; ++i)
        bytes[i] = asc2hex(data, 2 * i);
}

void readReplyValues(const QByteArray &reply, const FRAME_PRO &request, const RegisterType &type,
                     quint16 *values)
{
    unsigned char bytes[MaxWordsPerFrame * 2];
    readReplyBytes(reply, request, bytes);
    // Contacts are carried by the words that hold them, the first one's word first.
    const int firstBit = bitInWord(request.var.startAddr);
    for (int i = 0; i < request.readCount; ++i) {
        if (type.unitKind == BitUnit)
            values[i] = bytes[(firstBit + i) / 8] >> (firstBit + i) % 8 & 1;
        else
            values[i] = quint16(uchar2int16(bytes[2 * i], bytes[2 * i + 1]));
    }
}
