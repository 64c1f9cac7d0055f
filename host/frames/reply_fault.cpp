// The words for what went wrong with a reply.
#include "host/frames/reply_fault.h"

#include "host/frames/frame_text.h"
#include "host/frames/wire.h"
#include "host/output/table.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <iterator>
#include <utility>

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

struct Words
{
    const char *name;
    const char *text;  // with the figures by their names
};

constexpr Words Reasons[] = {
    {"good", ""},
    {"no-reply", "no reply within {waited}"},
    {"too-short", "too short: {size} instead of {expected}"},
    {"too-long", "too long: {size} instead of {expected}"},
    {"wrong-checksum", "wrong checksum: {detail} instead of {right byte}"},
    {"first-byte", "not a reply: first byte {byte} instead of {right byte}"},
    {"last-byte", "not a reply: last byte {byte} instead of {right byte}"},
    {"not-asked", "not the reply to this request"},
    {"echo", "the request's own echo"},
    {"too-early", "too early: after {waited}, when both frames take {expected time}"},
    {"line-lost", "line lost: {detail}"},
    {"not-hex", "data that is no hex: byte {detail}"},
    {"differ", "several replies that differ: nothing tells which is the answer"},
    {"may-be-copy", "it may be a copy of the reply before"},
};
static_assert(std::size(Reasons) == ReplyFault::ReasonCount, "a row for every reason");

}  // namespace

const char *ReplyFault::name(Reason reason)
{
    return Reasons[reason].name;
}

QString ReplyFault::text() const
{
    const std::pair<const char *, QString> figures[] = {
        {"{waited}", milliseconds(waited)},
        {"{expected time}", milliseconds(expectedTime)},
        {"{size}", countText(got, "byte")},
        {"{expected}", QString::number(expected)},
        {"{byte}", hexPair(char(got))},
        {"{right byte}", hexPair(char(expected))},
        {"{detail}", detail},  // the last: it may hold anything
    };
    QString text = QLatin1String(Reasons[reason].text);
    for (const auto &[name, figure] : figures)
        text.replace(QLatin1String(name), figure);
    return text;
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
    if (size > 0 && reply.front() != Ack)
        return {ReplyFault::FirstByte, uchar(reply.front()), Ack};
    if (size > 0 && reply.back() != Eot)
        return {ReplyFault::LastByte, uchar(reply.back()), Eot};
    if (size < ShortestReply)
        return {ReplyFault::TooShort, size, ShortestReply};
    const int dataEnd = size - ClosingBytes;
    const char sum = checksumOf(reply, dataEnd);
    const QByteArray carried = reply.mid(dataEnd, 2);
    if (carried != hexPair(sum).toLatin1()) {  // in capitals, and so it must be
        bool isHex = false;
        carried.toInt(&isHex, 16);
        return {ReplyFault::Checksum,
                0,
                uchar(sum),
                {},
                {},
                isHex ? QString::fromLatin1(carried) : "bytes "_s + hexText(carried, 2)};
    }
    for (const char byte : reply.mid(2, dataEnd - 2))
        if (!isHexDigit(byte))
            return {ReplyFault::NotHex, 0, 0, {}, {}, hexPair(byte)};
    return {};
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
