// Why an exchange failed: one of named reasons, with its figures, in the same words wherever it is
// printed.
#pragma once

#include "host/line/line.h"

#include <QtCore/QVector>

namespace host {

struct ReplyFault
{
    enum Reason {
        None,       ///< the reply is good
        NoReply,    ///< nothing came; waited: for how long
        TooShort,   ///< got and expected: bytes
        TooLong,    ///< got and expected: bytes
        Checksum,   ///< detail: as it came; expected: its value
        FirstByte,  ///< not a reply; got and expected: its first byte
        LastByte,   ///< not a reply; got and expected: its last byte
        NotAsked,   ///< well formed, but not the reply to this request
        Echo,       ///< the request's own
        TooEarly,   ///< there after `waited`, when both frames take at least `expectedTime`
        LineLost,   ///< detail: what the system says
        NotHex,     ///< detail: the data's first byte that is none
        Differ,     ///< several replies came, and nothing tells which is the answer
        MayBeCopy   ///< an acknowledgement, when nothing tells it from a copy of the one before
    };
    static constexpr int ReasonCount = MayBeCopy + 1;

    Reason reason = None;
    int got = 0;
    int expected = 0;
    LineTime waited{0};
    LineTime expectedTime{0};
    QString detail{};

    explicit operator bool() const { return reason != None; }

    /** The reason's fixed name, such as "too-short": for counting, and for programs. */
    static const char *name(Reason reason);

    /** The reason with its figures, such as "too short: 5 bytes instead of 13". */
    QString text() const;

    /** What to look at, such as the wiring; empty when there is nothing to say. */
    QString hint() const;
};

/**
 * What all tries of a request came to, such as "no reply to 3 requests of 500 ms each", with the
 * hint, if there is one.
 */
QString faultsText(const QVector<ReplyFault> &tries);

/** What is wrong with a complete reply's form; its length is not looked at. Empty: TooShort. */
ReplyFault formFault(const QByteArray &reply);

/**
 * The size of the whole reply, damaged or not, that begins at that place; 0 when none does, or its
 * end has not come yet.
 */
int wholeReplySize(const QByteArray &bytes, int from);

/** What begins there may become a reply. */
bool beginsReply(const QByteArray &bytes, int from);

}  // namespace host
