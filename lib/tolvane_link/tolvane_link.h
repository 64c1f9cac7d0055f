// The door of this controller's room: its tables stand in register_tables.cpp, everything else that
// is its own behind these declarations. Another controller is another room behind the same door, as
// examples/second_controller/ is; tests/example/ has the test to copy.
#ifndef TOLVANE_LINK_H
#define TOLVANE_LINK_H

#include "../protocol.h"

// ---- Tables (register_tables.cpp) -----------------------------------------------------------
//
// A storage unit is a word of 16 bits or a single bit; values of 32 bits are the host's, made of
// two words. What a row's type is follows from its name and widths:
//
//     valueBits  unitBits  name                  a unit is      address
//     16         16        any: "D_W"            a word         number of the word
//     1          16        with "_bit": "D_bit"  a word         word * 16 + bit
//     1          any       without: "TX"         a bit          number of the bit
//
// A row that is none of these stops the load with its name, and so does a "_bit" type without a
// word type of the same name up to "_". The order: rows are appended, because positions order the
// read planning and hosts show them; a "_bit" type stands behind the word type over the same words.
//
// addrFormat is letters "D" (decimal), "O" (octal) or "H" (hexadecimal), a digit each, for plain
// numbers; anything mixed, such as "DDDD.DD", is left to addr_str2int() and addr_int2str() and
// suits "_bit" types. minAddr and maxAddr are written in the pattern. access is "RW", "R" or "W".

// ---- Addresses (address.cpp) ----------------------------------------------------------------

/**
 * Address number of a word.bit text such as "20.5": word * 16 + bit, bit 0 to 15. Returns -1 when
 * the text is not of that form, 0 for a type name without "_bit".
 */
int addr_str2int(const QString &addrText, const QString &regName);

/** Word.bit text of an address number; empty for a type name without "_bit". */
QString addr_int2str(int number, const QString &regName);

/** Maps the host's address number to the controller's: the same here. */
int addrOffset(const QString &regName, int number);

// ---- What requests carry (merge_rule.cpp) -----------------------------------------------

/** The most words that one request spans: planning joins no more. */
int wordsPerRequest();

/**
 * How many units of a type one read carries for `purpose`: CyclicRead, ConditionRead or RecipeRead.
 * At most MaxUnitsPerRead, unless readAs() makes another type of them.
 */
int unitsPerRead(const RegisterType &type, SendState purpose);

/** How many units of a type, no more than VARIABLE has room for, one write carries. */
int unitsPerWrite(const RegisterType &type);

/** The span that is asked for to read `span`: another type, start and count where that helps. */
AddressSpan readAs(const AddressSpan &span, SendState purpose);

/** Whether frames can name the station and first address of the span. */
bool canBegin(const AddressSpan &span);

/** What judgeAddrMerge() finds. */
enum MergeVerdict { Joined = 0, Separate = 1 };

/**
 * Whether `next`, the following span in weight order, may be joined to `block` when as many units
 * as `widestGap` may lie between the two; returns a MergeVerdict.
 */
int judgeAddrMerge(const AddressSpan &block, const AddressSpan &next, int widestGap);

// ---- Request frames (request.cpp) -----------------------------------------------------------
// They are appended to driver.loop.frameList, whose head is in flight: a reply is judged as that to
// the head while frames of the same item may follow it. Appending ends references into the list.

/** Appends the read frame of the item, of a known type and no longer than a read carries. */
void getReadFrame(const VARIABLE &item);

/**
 * Appends the frame of a write, of a known type and no longer than a write carries. A write that
 * has to merge its bits into what the controller holds begins with a read frame, to whose reply
 * appendMergedWrite() appends the write frame.
 */
void getWriteFrame(const VARIABLE &item);

/** Takes the reply to the read frame of a write of `type` and appends the write frame behind it. */
void appendMergedWrite(const QByteArray &reply, const RegisterType &type);

// ---- Replies (reply.cpp) --------------------------------------------------------------------

/** What check_rcv_data() makes of a reply. */
enum ReplyVerdict {
    FailedExchange = 0,       ///< worth another try
    GoodReadReply = 1,        ///< carries data
    GoodAcknowledgement = 2,  ///< of a write
    Refused = 3               ///< the controller says no: given up at once; never on this link
};

/** Judges the reply to the head of driver.loop.frameList; returns a ReplyVerdict. */
int check_rcv_data(const unsigned char *reply, int length);

/**
 * The values of a good reply to a read frame: request.readCount units of `type` from the item's
 * first address on, words as 0 to 65535, bits as 0 and 1. What the reply lacks counts as 0.
 */
void readReplyValues(const QByteArray &reply, const FRAME_PRO &request, const RegisterType &type,
                     quint16 *values);

// ---- What other links need and this one does not (spare.cpp) --------------------------------
// The floors above ask for the first two; a room may leave the others out.

/** What a refusal says, to stand behind the description of the request: nothing on this link. */
QString refusalText(const QByteArray &reply);

/** Appends the handshake frame: nothing to send, no reply. */
void handShakeFrame();

/** The sum of `length` bytes, kept to 16 bits. */
quint16 computate_check(const quint8 *bytes, quint16 length);

/** The data position of the i-th of several one-word items in one reply. */
int allMix_GetDataStartPosition(const QByteArray &reply, const QList<VARIABLE> &items, int i);

/** The reply length of several one-word items: 0, this link has no such frames. */
int allMix_GetRecvLenFromReadList(const QList<VARIABLE> &items);

#endif
