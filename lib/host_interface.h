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
// - No two of them may run at the same time, but for those that only ask about addresses.
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

/** Positions of the recipe request bytes in the host's shared block (1 = requested). */
enum { RecipeWriteRequest = 60115, RecipeReadRequest = 60116, SharedBlockBytes = 60117 };

/** One request item: a contiguous run of units of one register type. */
struct VARIABLE
{
    int kind;                            ///< request kind; cyclic reads carry 4
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
    int readCount;                    ///< words that the frame reads; 0 for writes
    int frameSpare;                   ///< unused, 0
    VARIABLE var;                     ///< the item that the frame serves

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
    int bufIndex;     ///< first 16-bit unit in the recipe buffer; one unit a word or bit
    int hostSpare;    ///< the host's own; not read

    _RCP_VAR_PRO() : ownerKey(0), stationNo(0), startAddr(0), count(0), bufIndex(0), hostSpare(0) {}
};

/**
 * The host's function for the driver's three signals; called from inside intf_setData() and
 * intf_dealRcvFrame() in the caller's thread, with no lock held. It may call any export; the
 * loop's two functions are better left to the loop, for the call under way then goes on with what
 * they have already brought to its end.
 *
 * - (first property value, station, register type name, address number): a point changed.
 * - (0, -1, "RWI", n): unit n of the recipe buffer was read from the controller.
 * - (-1, -1, "-1", 0 or -1): the last request of the latest condition read is done (0) or was
 *   given up (-1). When an earlier one is given up, the rest is dropped without a signal.
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
 * monitored addresses. The callback and the recipe stay.
 *
 * hostShared: the host's shared block of SharedBlockBytes or more; hostContext: kept only;
 * rcpBuffer: recipe buffer in 16-bit units, low byte first; result: receives 0;
 * propertyText: five decimal integers separated by "#": report number, write mode (not 0: writes
 * are shown but not sent), spare, retry limit (1 or less: a request is sent once), block limit in
 * words (taken as 1 to 127). A part that is no number counts as 0; a text with fewer parts leaves
 * all five as they were.
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
 * word address. Returns 0 valid, 1 the object's kind does not fit the type, 2 outside the type's
 * range, 3 unknown type, 4 not an address text. On 0 and 2 *addrOut holds the address number, on 4
 * it holds 0 if the type's addresses are plain numbers.
 */
Q_DECL_EXPORT int intf_checkAddrValidity(QString regName, QString addrText, int *addrOut, int count,
                                         int wordRequest);

/**
 * The same for an object of a data type and use, codes of the host. dataType: -1 a bit, any other
 * a value made of words; of those 1, 3, 5, 6 and 9 fit 32-bit types. useMode: 1 and 2 write, any
 * other only reads. Returns also 5, the data type does not fit a 32-bit type, and 6, the use does
 * not fit a read-only type; this controller has neither.
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
 */
Q_DECL_EXPORT int intf_addrMerge(const QList<KEY_ADDRESS> &keys);

/**
 * Queues one read of a range; `kind` travels with its frames. The end of the latest range queued
 * is announced through the callback. Always returns 1.
 */
Q_DECL_EXPORT int intf_addConditionRead(const KEY_ADDRESS &key, int kind);

/**
 * Replaces the recipe by the entries that are this driver's, of known types, at least one value
 * long, with a first word of 0 to 32767 and a place in the buffer from 0 to 2^30. Returns how
 * many were kept; when none was, transfers are refused until a later registration keeps one. A
 * transfer under way goes on with the new blocks at the number it had reached.
 */
Q_DECL_EXPORT int intf_setRcpAddress(const QVector<_RCP_VAR_PRO> &entries);

// ---- Values ---------------------------------------------------------------------------------

/**
 * Copies cached values to `out`: 2 bytes a word, low byte first, or 1 byte a bit. Addresses never
 * read or written give 0, and an entry of the cache each (some 100 bytes) until the next start.
 * Always returns 1.
 */
Q_DECL_EXPORT int intf_getData(int stationNo, QString regName, int startAddr, int count,
                               unsigned char *out);

/**
 * Queues a write and shows its values at once. `values`: 2 bytes a word, low byte first, or
 * 1 byte a bit, of which 1 sets and 0 clears; `kind` travels with its frames. A write that
 * repeats the range of one still waiting takes its place in the queue. The queue holds 513
 * requests: in a full one the last is lost to the new one, without a report, and its value is
 * shown until the controller's changes. Null values change nothing. Always returns 1.
 */
Q_DECL_EXPORT int intf_setData(int stationNo, QString regName, int startAddr, int count,
                               const unsigned char *values, int kind);

// ---- Communication loop; one thread, the two in turn ----------------------------------------

/**
 * Offers the frame to transmit. Returns 1 with *frame filled, or 0 when there is nothing to send.
 * The frame in flight is offered again until intf_dealRcvFrame() has finished it. A null pointer
 * gives 0.
 */
Q_DECL_EXPORT int intf_getSendFrame(FRAME_PRO *frame);

/**
 * Judges what was received (possibly nothing) for the frame in flight. Returns 1 good, 8 bad:
 * send the same frame again, 2 given up after the retry limit, 0 no frame was in flight.
 * *errorText describes the request, whatever the outcome, as "1#D_W100(10)(0)": station, register
 * type, address, count, bytes received; it is empty for 0. A null pointer is tolerated.
 */
Q_DECL_EXPORT int intf_dealRcvFrame(QByteArray reply, QString *errorText);

}  // extern "C"

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

#endif
