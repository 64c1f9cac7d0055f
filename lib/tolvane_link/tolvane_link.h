// The room of this controller: address texts, the joining rule and the frames of its direct
// serial port. Another controller is supported by another room behind these declarations.
#ifndef TOLVANE_LINK_H
#define TOLVANE_LINK_H

#include "../protocol.h"

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

// ---- Joining of read blocks (merge_rule.cpp) ------------------------------------------------

/** How far apart two spans may lie to be joined. */
enum MergeTest { StrictTest = 0, GapTolerantTest = 1 };

/**
 * Whether `next`, the following span in weight order, may be joined to `block`: 0 yes, 1 no.
 * `mode` is a MergeTest; the tolerant one bridges gaps up to the block limit.
 */
int judgeAddrMerge(const AddressSpan &block, const AddressSpan &next, int mode);

// ---- Request frames (request.cpp) -----------------------------------------------------------

/** Appends the handshake frame: nothing to send, no reply. */
void handShakeFrame();

/**
 * Appends the read frame of the first item to driver.frameList; further items are not looked at.
 * The item's count is a number of words, 1 to MaxWordsPerFrame; an item that no frame can carry,
 * or of an unknown type, appends nothing. Returns the number of items served: always 1.
 */
int getReadFrame(const QList<VARIABLE> &items);

/**
 * Appends the frames of a write: one, or two for several bits (read, then write with the bits
 * merged in by mergeBitsIntoWrite()). An item that no frame can carry, or of an unknown type,
 * appends nothing.
 */
void getWriteFrame(const VARIABLE &item);

/** The sum of `length` bytes, kept to 16 bits. */
quint16 computate_check(const quint8 *bytes, quint16 length);

// ---- Replies (reply.cpp) --------------------------------------------------------------------

/** What check_rcv_data() makes of a reply. */
enum ReplyVerdict { FailedExchange = 0, GoodReadReply = 1, GoodAcknowledgement = 2 };

/**
 * Judges the reply to the head of driver.frameList by its control bytes and checksum; returns a
 * ReplyVerdict. Neither the length nor the data characters are examined.
 */
int check_rcv_data(const unsigned char *reply, int length);

/** The words of a read reply. */
struct ReplyWords
{
    quint16 word[MaxWordsPerFrame];

    /** Bit n, counted from bit 0 of the first word: 0 or 1. */
    int bit(int n) const { return word[n / BitsPerWord] >> n % BitsPerWord & 1; }
};

/**
 * Takes `count` words (at most MaxWordsPerFrame) out of a read reply whose data begins at
 * dataStart, four characters a word, low byte first. Characters that the reply lacks count as 0.
 */
void readReplyWords(const QByteArray &reply, int dataStart, int count, ReplyWords &words);

/**
 * Takes the reply to the first frame of a write of several bits, merges the item's bits into the
 * words read and puts them, with a fresh checksum, into the write frame behind it. Does nothing
 * unless those two frames stand in driver.frameList.
 */
void mergeBitsIntoWrite(const QByteArray &reply);

/** The data position of the i-th of several one-word items in one reply. */
int allMix_GetDataStartPosition(const QByteArray &reply, const QList<VARIABLE> &items, int i);

/** The reply length of several one-word items: 0, this link has no such frames. */
int allMix_GetRecvLenFromReadList(const QList<VARIABLE> &items);

#endif
