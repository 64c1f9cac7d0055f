// What the panel runtime sees of the driver: the records that cross the border,
// the value-change callback and the 19 exported functions.
//
// Record fields keep this order and these widths; they are part of the binary
// interface. Driver and host must be built against the same Qt.
//
// What holds for all exports:
// - Texts and lists that the host passes are read during the call and not kept.
// - A count below 1 asks for nothing. No request covers more than 524,288 addresses: what lies
//   beyond is ignored. Buffers must be as long as the count says; nothing checks them.
// - A request whose first word lies outside 0 to 32767 is never sent, for no frame can name it; of
//   a longer one the frames that begin inside are. intf_checkAddr() tells what the controller has.
// - No two of them may run at the same time, but for the questions under Identity and Addresses.
#ifndef TOLVANE_HOST_INTERFACE_H
#define TOLVANE_HOST_INTERFACE_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <cstring>

/** Bytes of a frame and of a value buffer. */
enum { FrameBytes = 1024, ValueBytes = 1024 };

/**
 * Positions of the recipe request bytes in the host's shared block. The host sets one to 1, and no
 * other value asks for anything; the driver puts it back to 0 at the end of the transfer,
 * successful or not. See intf_setRcpAddress().
 */
enum { RecipeWriteRequest = 60115, RecipeReadRequest = 60116, SharedBlockBytes = 60117 };

/** One request item: a contiguous run of units of one register type. */
struct VARIABLE
{
    int kind;                            ///< 4: cyclic read; the host's own of a write or condition
                                         ///< read; of a recipe block that of the item before it
    int stationNo;                       ///< station number of the controller
    QString regName;                     ///< register type name, such as "D_W" or "M_bit"
    int startAddr;                       ///< address number; word * 16 + bit for "_bit" types
    int count;                           ///< words, or bits for bit types
    unsigned char valueBuf[ValueBytes];  ///< values of a write: 2 bytes a word, 1 byte a bit

    VARIABLE() : kind(0), stationNo(0), startAddr(0), count(0)
    {
        std::memset(valueBuf, 0, sizeof valueBuf);
    }
};

/** One prepared request frame, as intf_getSendFrame() hands it over. */
struct FRAME_PRO
{
    unsigned char frame[FrameBytes];  ///< request bytes; the first sendLen are meaningful
    int sendLen;                      ///< bytes to transmit
    int replyLen;                     ///< bytes of the reply to wait for
    int dataStart;                    ///< position of the reply's first data character
    int readCount;                    ///< words that the frame reads, also as the first of the two
                                      ///< steps of writing several bits; 0 when it writes
    int frameSpare;                   ///< unused, 0
    /**
     * The item that the frame serves. A read names what is asked for, not what was registered: bits
     * as the words that hold them ("M_bit" 325 as "M_W" 20), contacts of a condition read as 16
     * times as many. A write names what is written, in both steps.
     */
    VARIABLE var;

    FRAME_PRO() : sendLen(0), replyLen(0), dataStart(0), readCount(0), frameSpare(0)
    {
        std::memset(frame, 0, sizeof frame);
    }
};

/** One address key: what the host monitors, reads on condition or writes. */
struct KEY_ADDRESS
{
    QString hostText;                    ///< the host's own; not read
    int hostValue1;                      ///< the host's own; not read
    int hostValue2;                      ///< the host's own; not read
    int stationNo;                       ///< station number of the controller
    QString regName;                     ///< register type name
    QString hostNote;                    ///< the host's own; not read
    int startAddr;                       ///< address number; word * 16 + bit for "_bit" types
    int bitMark;                         ///< -1: a key of a bit type; any other value: words
    int count;                           ///< words, or bits for bit types
    unsigned char valueBuf[ValueBytes];  ///< not read

    KEY_ADDRESS() : hostValue1(0), hostValue2(0), stationNo(0), startAddr(0), bitMark(0), count(0)
    {
        std::memset(valueBuf, 0, sizeof valueBuf);
    }
};

/** One recipe entry as the host registers it. */
struct _RCP_VAR_PRO
{
    int ownerKey;     ///< equals the driver's first property value; other entries are skipped
    int stationNo;    ///< station number of the controller
    QString regName;  ///< register type name
    int startAddr;    ///< address number; word * 16 + bit for "_bit" types
    int count;        ///< consecutive words or bits
    int bufIndex;     ///< first of `count` units in the recipe buffer; see intf_setRcpAddress()
    int hostSpare;    ///< the host's own; not read

    _RCP_VAR_PRO() : ownerKey(0), stationNo(0), startAddr(0), count(0), bufIndex(0), hostSpare(0) {}
};

/**
 * The host's function for the driver's three signals; called from inside intf_setData() and
 * intf_dealRcvFrame() in the caller's thread, with no lock held. It may call any export; the
 * loop's two functions are better left to the loop, for the call under way then goes on with what
 * they have already brought to its end.
 *
 * - (first property value, station, register type name, address number): a monitored point
 *   changed, or a write changed a contact ("TX", "CX"), monitored or not. The value is stored after
 *   the report: intf_getData() from inside gives the one from before.
 * - The same at the end of a write, the value settled and perhaps unchanged: of monitored words
 *   and any contacts that were given up, and of the monitored points of a word when no write of
 *   bits of it is outstanding any more.
 * - (0, -1, "RWI", n): unit n of the recipe buffer was read from the controller, and is filled.
 * - (-1, -1, "-1", 0 or -1): the latest condition read is done, its values stored (0), or was
 *   given up (-1); see intf_addConditionRead().
 *
 * The text is valid during the call.
 */
typedef void (*ValueChangeCallBack)(int first, int stationNo, const QString &text, int address);

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage"  // QString by value is the interface
#endif

extern "C" {

// ---- Identity ------------------------------------------------------------------------------

/** Writes the protocol type code, 0, to *type; a null pointer is ignored. */
Q_DECL_EXPORT void intf_getProtocolType(int *type);

/**
 * Replaces `text` by one flat comma-separated list: 0, the default serial line (baud rate, data
 * bits, parity, stop bits), 0, 1, the default network address and port, the driver's name and
 * the 18 register type names.
 */
Q_DECL_EXPORT void intf_getDriverParameter(QString &text);

/** Replaces `text` by the property-page descriptor, "0_0". */
Q_DECL_EXPORT void intf_getDriverPropertyPage(QString &text);

/** Keeps the host's property-page text; the driver does not read it. */
Q_DECL_EXPORT void intf_SetDriverPropertyPage(QString page);

/** Returns the driver's version, "2.0.0.0". */
Q_DECL_EXPORT QString intf_getVersion();

/**
 * Appends the names of the bit types (type 0) or of the word types (any other type) to `names`.
 * Returns 1 when type is 0 or 1, else 0.
 */
Q_DECL_EXPORT int intf_getRegListByType(int type, QStringList &names);

// ---- Start ----------------------------------------------------------------------------------

/** Sets the callback, replacing any earlier one; null stops all signals. */
Q_DECL_EXPORT void intf_setAddrValueChangeCallBack(ValueChangeCallBack callBack);

/**
 * Starts, or starts over: empties the queues, the cache and the frame in flight, and forgets the
 * monitored addresses. The callback and the recipe stay, and with a request byte left at 1 also the
 * block that its transfer had reached.
 *
 * hostShared: the host's shared block of SharedBlockBytes or more; hostContext: kept only;
 * rcpBuffer: recipe buffer in 16-bit units, low byte first; result: receives 0;
 * propertyText: five decimal integers separated by "#": report number, write mode (not 0: writes
 * are shown but not sent), spare, retry limit (how often a frame is sent; 1 or less: once), block
 * limit in words (taken as 1 to 127). A part that is no number counts as 0; a text with fewer parts
 * leaves all five as they were.
 * hostMutex: guards the two request bytes of hostShared; the driver locks it inside the loop's two
 * functions, so the caller of those must not hold it.
 *
 * All pointers stay the host's and must be valid until unload. Null pointers are tolerated:
 * without hostShared or rcpBuffer there are no recipe transfers. Always returns 1.
 */
Q_DECL_EXPORT int intf_initProperty(unsigned char *hostShared, void *hostContext,
                                    unsigned char *rcpBuffer, int *result, const char *propertyText,
                                    QMutex *hostMutex);

// ---- Addresses; may be called at any time, on any thread ------------------------------------

/**
 * Checks an address text for an object of `count` values that wants a bit (wordRequest 0) or a
 * word address. Returns 0 valid, 1 the object's kind does not fit the type, 2 the address below the
 * type's lowest or the last value, address + count - 1, beyond its highest, 3 unknown type, 4 not
 * an address text. With a count below 1 an address beyond the highest can thus give 0. On 0 and 2
 * *addrOut holds the address number, on 4 it holds 0 if the type's addresses are plain numbers.
 */
Q_DECL_EXPORT int intf_checkAddrValidity(QString regName, QString addrText, int *addrOut, int count,
                                         int wordRequest);

/**
 * The same for an object of a data type and use, codes of the host. dataType: -1 a bit, any other
 * a value made of words; of those 1, 3, 5, 6 and 9 fit 32-bit types. useMode: 1 and 2 do not fit
 * read-only types; what they mean is the host's business. Returns also 5, the data type does not
 * fit a 32-bit type, and 6, the use does not fit a read-only type; this controller has neither.
 */
Q_DECL_EXPORT int intf_checkAddr(QString regName, QString addrText, int *addrOut, int dataType,
                                 int count, int useMode);

/**
 * Appends five texts: address pattern, lowest and highest address, width code ("0" bit, "1"
 * word, "2" double word) and access code ("0" read, "1" both, "2" write). An unknown type
 * appends nothing. Always returns 0.
 */
Q_DECL_EXPORT int intf_getRegDiscription(QString regName, QStringList &description);

/**
 * Appends `count` address texts and numbers from address number `start` on. A step of -1 or -2
 * advances by one 16-bit or 32-bit value, any other below 1 by 1. Returns 1, or 2 when addresses
 * beyond the type's last were replaced by it, or 0 for an unknown type (nothing appended).
 */
Q_DECL_EXPORT int intf_multiCopy(QString regName, int start, int count, int step,
                                 QVector<QString> &addrTexts, QVector<int> &addrNumbers);

// ---- Registration ---------------------------------------------------------------------------

/**
 * Replaces the set of monitored addresses and plans the cyclic reads. Keys of unknown types or
 * with a count below 1 are not read. Returns the number of cyclic read requests.
 *
 * The cache stays, and only what differs from the value last read (0 before the first read) is
 * reported: an address may be read, and read again, without a report. Bits whose write is queued
 * may show the value last read until it ends.
 */
Q_DECL_EXPORT int intf_addrMerge(const QList<KEY_ADDRESS> &keys);

/**
 * Queues the reads of a range, in pieces of the block limit (8 times as many when key.bitMark is
 * -1), at most 127 words or 7 contacts. `kind` travels with their frames. A piece that repeats one
 * still waiting takes its place in the queue; the first in the queue may be in flight, and what
 * repeats it is queued again. The queue holds 513: in a full one the last is lost to the new one.
 * Always returns 1.
 *
 * The callback tells the end of every piece that has the station, type, address and count of the
 * one queued last. So a range asked for again while in flight is told early, and twice; one that
 * took the place of a waiting one is told before what waits behind it. A piece that is given up
 * takes all that wait with it, and -1 is told only if it is such a piece itself. Unknown types,
 * counts below 1 and what no frame can name are not queued and never told.
 */
Q_DECL_EXPORT int intf_addConditionRead(const KEY_ADDRESS &key, int kind);

/**
 * Replaces the recipe by the entries that are this driver's, of known types, at least one value
 * long, with a first word of 0 to 32767 and a place in the buffer from 0 to 2^30. Returns how
 * many were kept; when none was, requests are put back to 0 unserved until a later registration
 * keeps one.
 *
 * Each value has one 16-bit unit of the buffer, low byte first; bits and contacts are 1 unless the
 * low byte is 0. In order of station, type and address, words or bits that touch or overlap are
 * joined to blocks of at most the block limit; a longer entry is cut into blocks of 127 words, 127
 * contacts or 1,024 bits. A block of words is written from consecutive units, beginning with its
 * first entry's: word entries that touch or overlap must lie in the buffer as they do in the
 * controller. Otherwise wrong units are sent, even from beyond the buffer's end (D0 at unit 9 and
 * D1 x9 at unit 0 are sent from units 9 to 18). What is read goes to each entry's own units.
 *
 * A transfer goes before everything else, writing before reading, one block an item. When
 * intf_getSendFrame() looks at the two request bytes (no frame pending) and finds neither at 1, the
 * next transfer begins at its first block. Nothing else resets the position of an unfinished one:
 * with one byte taken back and the other set, or taken back and set again, between two looks it
 * stays. So after taking a request back let intf_getSendFrame() be called once with no frame
 * pending.
 *
 * Register before asking, never during a transfer: it goes on with the new blocks at the number it
 * had reached. When there are no more blocks than that, nothing of the new recipe moves: the last
 * block is read or written once more, the byte falls and the result is 1. When nothing was ever
 * registered, or the driver is started over in between, the last exchange is repeated, or every
 * call of intf_getSendFrame() gives 0, for as long as the byte stands at 1.
 */
Q_DECL_EXPORT int intf_setRcpAddress(const QVector<_RCP_VAR_PRO> &entries);

// ---- Values ---------------------------------------------------------------------------------

/**
 * Copies cached values to `out`: 2 bytes a word, low byte first, or 1 byte a bit. Addresses never
 * read or written give 0, and an entry in the cache until the next start: 80 bytes each in a run of
 * addresses, 650 when they lie 64 or more apart, 900 when each is alone at its station (64-bit
 * machine). Null `out` gets nothing. Always returns 1.
 */
Q_DECL_EXPORT int intf_getData(int stationNo, QString regName, int startAddr, int count,
                               unsigned char *out);

/**
 * Queues a write and shows its values at once. `values`: 2 bytes a word, low byte first, or 1 byte
 * a bit, of which 1 sets and 0 clears; `kind` travels with its frames. Null values change nothing.
 * Always returns 1.
 *
 * It is sent in pieces of the block limit, 8 times as many bits or contacts. A piece that repeats
 * the range of one still waiting takes its place in the queue; the first in the queue may be in
 * flight, and what repeats it is queued again. The queue holds 513: in a full one the last is lost
 * to the new one, without a report.
 *
 * Values are shown until their write ends, or until a read brings another than the read before.
 * Bits of words are shown until no write of bits of that word is outstanding; a change read in the
 * meantime counts only if no write was queued. A lost value is shown until the controller's changes
 * or it is written again; of a bit of a word the changes read while writes were queued do not
 * count, not even afterwards.
 */
Q_DECL_EXPORT int intf_setData(int stationNo, QString regName, int startAddr, int count,
                               const unsigned char *values, int kind);

// ---- Communication loop; one thread, the two in turn ----------------------------------------

/**
 * Offers the frame to transmit. Returns 1 with *frame filled, or 0 when there is nothing to send
 * now. The frame in flight is offered again until intf_dealRcvFrame() has finished it; otherwise
 * recipe blocks go before writes, condition reads and cyclic reads. After ten writes and condition
 * reads, or three when a condition read is next, a cyclic read has its turn; when nothing is
 * monitored the result is 0 once, with requests still queued. So ask again at once: only two 0 in a
 * row mean that nothing waits, and not even these while a request byte stands at 1 (see
 * intf_setRcpAddress()). A null pointer gives 0.
 */
Q_DECL_EXPORT int intf_getSendFrame(FRAME_PRO *frame);

/**
 * Judges what was received (possibly nothing) for the frame in flight. Returns 1 good, 8 bad:
 * send the same frame again, 2 given up after the retry limit, with all frames of its item, 0 no
 * frame was in flight. Only the first and the last byte and the checksum are looked at: that the
 * reply is replyLen bytes long and answers this request is for the loop to see to.
 * *errorText describes the request, whatever the outcome, as "1#D_W100(10)(0)": station, register
 * type, address, count, bytes received; it is empty for 0. A null pointer is tolerated.
 */
Q_DECL_EXPORT int intf_dealRcvFrame(QByteArray reply, QString *errorText);

}  // extern "C"

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

#endif
