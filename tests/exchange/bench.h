// The panel's side of a link under test: the driver, loaded as a panel loads it, everything that a
// panel owns, and a simulated controller at the other end.
#ifndef TOLVANE_TESTS_EXCHANGE_BENCH_H
#define TOLVANE_TESTS_EXCHANGE_BENCH_H

#include <QtCore/QLibrary>

#include <functional>
#include <vector>

#include "host_interface.h"
#include "plc/answering.h"

/** The exports, looked up by name. Loads the library and, at the end, unloads it again. */
class Driver
{
    QLibrary library_;  // first: the exports below are found in it

    template <typename Function>
    Function find(const char *name)
    {
        // By way of void *, which is what some generations of Qt give.
        return reinterpret_cast<Function>(reinterpret_cast<void *>(library_.resolve(name)));
    }

public:
    Driver() : library_(QLatin1String(TOLVANE_LIBRARY)) {}
    ~Driver();

#define TOLVANE_EXPORT(name) \
    decltype(&intf_##name) name = find<decltype(&intf_##name)>("intf_" #name)
    TOLVANE_EXPORT(getProtocolType);
    TOLVANE_EXPORT(SetDriverPropertyPage);
    TOLVANE_EXPORT(checkAddrValidity);
    TOLVANE_EXPORT(checkAddr);
    TOLVANE_EXPORT(multiCopy);
    TOLVANE_EXPORT(setAddrValueChangeCallBack);
    TOLVANE_EXPORT(initProperty);
    TOLVANE_EXPORT(addrMerge);
    TOLVANE_EXPORT(addConditionRead);
    TOLVANE_EXPORT(setRcpAddress);
    TOLVANE_EXPORT(getData);
    TOLVANE_EXPORT(setData);
    TOLVANE_EXPORT(getSendFrame);
    TOLVANE_EXPORT(dealRcvFrame);
#undef TOLVANE_EXPORT
};

/** A range of addresses, and what goes with it where it is used. */
struct Range
{
    explicit Range(const QString &type = QString(), int first = 0, int elements = 1)
        : name(type), start(first), count(elements), mark(type.endsWith("_W") ? 0 : -1)
    {
    }

    QString name;  ///< register type
    int start;     ///< address number
    int count;     ///< words, or bits of a bit type
    int mark;      ///< of a key: -1 for a bit type
    int station = 1;
    int kind = 0;   ///< of a write or condition read
    int unit = 0;   ///< recipe: first unit in the buffer
    int owner = 7;  ///< recipe: owner key
};
typedef std::vector<Range> Ranges;

/** Whether values of the type are bits, a byte each, rather than words of two bytes. */
bool isBitType(const QString &name);
/** Bytes of one of the range's values as the host passes it. */
int widthOf(const Range &range);

/** A frame around `body`: opening byte, body, checksum, closing byte. */
QByteArray wrapped(char open, const QByteArray &body, char close);

enum : char { STX = 0x02, ETX = 0x03, EOT = 0x04, ACK = 0x06 };

KEY_ADDRESS keyOf(const Range &range);
_RCP_VAR_PRO entryOf(const Range &range);

/** One bench at a time. */
class Bench
{
public:
    enum { RecipeUnits = 4096 };

    /** Loads the driver afresh and registers the callback; init() is the test's. */
    Bench();
    ~Bench();

    bool init(const QByteArray &propertyText);
    int monitor(const Ranges &keys);
    void condition(const Range &range);
    int recipe(const Ranges &entries);
    void write(const Range &range, const QByteArray &values);
    QByteArray get(const Range &range);

    /** Asks the driver for the next frame; true when `frame` holds one, checked for consistency. */
    bool send();
    /** The bytes of `frame`. */
    QByteArray request() const;
    /** `frame` as "rD100x2": command, device, word, words; "2#" before it for station 2. */
    QString requestText() const;
    /** Sends `frame` to the controller and returns its reply. */
    QByteArray answer();
    int reply(const QByteArray &bytes);
    /** One exchange without faults: its request as a text, or "-" when nothing is sent. */
    QString exchange();
    /** Exchanges until the driver has nothing to send twice running, at most 3000. */
    void drain();

    Driver driver;
    plc::Memory memory;
    plc::Controller controller;
    std::vector<unsigned char> shared;
    std::vector<unsigned char> buffer;
    QMutex mutex;
    FRAME_PRO frame;    ///< the last that was offered
    QString errorText;  ///< of the last reply
    QStringList calls;  ///< callbacks as texts: "D_W 100", "RWI 0", "done -1"
    std::function<void(const QString &call)> reaction;  ///< what the panel does inside a callback
    QStringList flaws;                                  ///< what may never happen but did

private:
    static void callBack(int first, int stationNo, const QString &text, int address);
    void checkFrame();
};

#endif
