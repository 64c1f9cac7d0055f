// Judging replies and taking values out of them.
//
// Read reply:      <unit> 01|03 <bytes> <data> <CRC>
// Acknowledgement: the first six bytes of the write request and <CRC>
// Refusal:         <unit> <function code + 80> <exception code> <CRC>
#include "wire.h"

namespace {

const char *exceptionName(int code)
{
    switch (code) {
        case 1:
            return ": illegal function";
        case 2:
            return ": illegal data address";
        case 3:
            return ": illegal data value";
        case 4:
            return ": server device failure";
        case 5:
            return ": accepted, takes its time";
        case 6:
            return ": server device busy";
        case 8:
            return ": memory parity error";
        case 10:
            return ": gateway path unavailable";
        case 11:
            return ": no response behind the gateway";
        default:
            return "";
    }
}

}  // namespace

quint16 crc16(const unsigned char *bytes, int length)
{
    quint32 crc = 0xFFFF;
    for (int i = 0; i < length; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xA001 : crc >> 1;
    }
    return static_cast<quint16>(crc);
}

int check_rcv_data(const unsigned char *reply, int length)
{
    const FRAME_PRO &request = driver.loop.frameList.at(0);
    if (length < RefusalBytes || crc16(reply, length) != 0 || reply[0] != request.frame[0])
        return FailedExchange;
    if (reply[1] == (request.frame[1] | RefusedFlag))
        return length == RefusalBytes ? Refused : FailedExchange;
    if (reply[1] != request.frame[1] || length != request.replyLen)
        return FailedExchange;
    if (request.readCount != 0)
        return reply[2] == length - ReplyDataStart - CrcBytes ? GoodReadReply : FailedExchange;
    const bool echoes = std::memcmp(reply, request.frame, AcknowledgementBytes - CrcBytes) == 0;
    return echoes ? GoodAcknowledgement : FailedExchange;
}

void readReplyValues(const QByteArray &reply, const FRAME_PRO &request, const RegisterType &type,
                     quint16 *values)
{
    const unsigned char *data =
        reinterpret_cast<const unsigned char *>(reply.constData()) + request.dataStart;
    for (int i = 0; i < request.readCount; ++i) {
        if (type.unitKind == BitUnit)
            values[i] = data[i / 8] >> i % 8 & 1;
        else
            values[i] = quint16(data[2 * i] << 8 | data[2 * i + 1]);
    }
}

QString refusalText(const QByteArray &reply)
{
    const int code = static_cast<unsigned char>(reply.at(2));
    return QString::fromLatin1(" exception %1%2").arg(code).arg(QLatin1String(exceptionName(code)));
}
