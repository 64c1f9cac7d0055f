// The words for what went wrong with a reply.
#include "host/frames/reply_fault.h"

#include "host/frames/frame_text.h"
#include "host/frames/wire.h"
#include "host/output/table.h"

#include <QtCore/QStringList>

#include <algorithm>

namespace host {

namespace {

bool isHexDigit(char byte)
{
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'F');
}

QString milliseconds(LineTime time)
{
    const double ms = double(time.count()) * 1e-6;
    return "%1 ms"_s.arg(ms, 0, 'f', ms < 10 ? 1 : 0);
}

ReplyFault byteFault(ReplyFault::Reason reason, int got, int expected)
{
    ReplyFault fault;
    fault.reason = reason;
    fault.got = got & 0xFF;
    fault.expected = expected;
    return fault;
}

}  // namespace

const char *ReplyFault::name(Reason reason)
{
    constexpr const char *names[ReasonCount] = {
        "good",       "no-reply",  "too-short", "too-long",   "wrong-checksum",
        "first-byte", "last-byte", "not-asked", "echo",       "too-early",
        "line-lost",  "not-hex",   "differ",    "may-be-copy"};
    return names[reason];
}

QString ReplyFault::text() const
{
    switch (reason) {
        case None:
            return QString();
        case NoReply:
            return "no reply within %1"_s.arg(milliseconds(waited));
        case TooShort:
            return "too short: %1 instead of %2"_s.arg(countText(got, "byte")).arg(expected);
        case TooLong:
            return "too long: %1 instead of %2"_s.arg(countText(got, "byte")).arg(expected);
        case Checksum:
            return "wrong checksum: %1 instead of %2"_s.arg(detail, hexPair(char(expected)));
        case FirstByte:
            return "not a reply: first byte %1 instead of %2"_s.arg(hexPair(char(got)),
                                                                    hexPair(char(expected)));
        case LastByte:
            return "not a reply: last byte %1 instead of %2"_s.arg(hexPair(char(got)),
                                                                   hexPair(char(expected)));
        case NotAsked:
            return "not the reply to this request"_s;
        case Echo:
            return "the request's own echo"_s;
        case TooEarly:
            return "too early: after %1, when both frames take %2"_s.arg(
                milliseconds(waited), milliseconds(expectedTime));
        case LineLost:
            return "line lost: %1"_s.arg(detail);
        case NotHex:
            return "data that is no hex: byte %1"_s.arg(detail);
        case Differ:
            return "several replies that differ: nothing tells which is the answer"_s;
        case MayBeCopy:
            return "it may be a copy of the reply before"_s;
    }
    return QString();
}

QString ReplyFault::hint() const
{
    if (reason == Echo)
        return "see to the wiring: what is sent comes straight back"_s;
    if (reason == TooEarly)
        return "replies come faster than %1 allows: --serial, or --pace none?"_s.arg(
            detail.isEmpty() ? "the line"_s : detail);
    return QString();
}

QString faultsText(const QVector<ReplyFault> &tries)
{
    if (tries.isEmpty())
        return QString();
    const ReplyFault &last = tries.constLast();
    const bool alike = std::all_of(tries.cbegin(), tries.cend(), [&](const ReplyFault &fault) {
        return fault.reason == last.reason;
    });
    QString text;
    if (tries.size() == 1) {
        text = last.text();
    } else if (alike && last.reason == ReplyFault::NoReply) {
        text = "no reply to %1 requests of %2 each"_s.arg(QString::number(tries.size()),
                                                          milliseconds(last.waited));
    } else if (alike) {
        text = "%1 requests: %2"_s.arg(QString::number(tries.size()), last.text());
    } else {
        QStringList texts;
        for (const ReplyFault &fault : tries)
            texts.append(fault.text());
        text = texts.join("; then "_s);
    }
    return last.hint().isEmpty() ? text : "%1 (%2)"_s.arg(text, last.hint());
}

ReplyFault formFault(const QByteArray &reply)
{
    const int size = int(reply.size());
    if (size > 0 && reply.at(0) != Ack)
        return byteFault(ReplyFault::FirstByte, reply.at(0), Ack);
    if (size > 0 && reply.at(size - 1) != Eot)
        return byteFault(ReplyFault::LastByte, reply.at(size - 1), Eot);
    if (size < ShortestReply) {
        ReplyFault fault;
        fault.reason = ReplyFault::TooShort;
        fault.got = size;
        fault.expected = ShortestReply;
        return fault;
    }
    const char sum = checksumOf(reply, size - ClosingBytes);
    const QByteArray carried = reply.mid(size - ClosingBytes, 2);
    const QString right = hexPair(sum);  // in capitals, and so it must be
    ReplyFault fault;
    if (carried != right.toLatin1()) {
        fault.reason = ReplyFault::Checksum;
        fault.expected = static_cast<uchar>(sum);
        bool isHex = false;
        carried.toInt(&isHex, 16);
        fault.detail = isHex ? QString::fromLatin1(carried) : "bytes "_s + hexText(carried, 2);
        return fault;
    }
    const auto data = reply.cbegin() + 2;
    const auto odd = std::find_if_not(data, reply.cend() - ClosingBytes, isHexDigit);
    if (odd != reply.cend() - ClosingBytes) {
        fault.reason = ReplyFault::NotHex;
        fault.detail = hexPair(*odd);
    }
    return fault;
}

int wholeReplySize(const QByteArray &bytes, int from)
{
    return beginsReply(bytes, from) ? qMax(0, int(bytes.indexOf(Eot, from)) + 1 - from) : 0;
}

bool beginsReply(const QByteArray &bytes, int from)
{
    return from < int(bytes.size()) && bytes.at(from) == Ack;
}

}  // namespace host
