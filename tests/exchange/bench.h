// The panel's side of a link under test: the driver, loaded as a panel loads it, everything that a
// panel owns, and a simulated controller at the other end.
#ifndef TOLVANE_TESTS_EXCHANGE_BENCH_H
#define TOLVANE_TESTS_EXCHANGE_BENCH_H

#include <QLibrary>
#include <functional>
#include <memory>

#include "host_interface.h"
#include "plc/answering.h"

/** The exports, looked up by name. Loads the library and, at the end, unloads it again. */
class Driver
{
    QLibrary library_{TOLVANE_LIBRARY};  // first: the exports below are found in it
    QFunctionPointer find(const char *name);

public:
    ~Driver();

#define TOLVANE_EXPORT(name) \
    decltype(&intf_##name) name = reinterpret_cast<decltype(name)>(find("intf_" #name))
    TOLVANE_EXPORT(getProtocolType);
    TOLVANE_EXPORT(checkAddrValidity);
    TOLVANE_EXPORT(checkAddr);
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

/** A range of addresses as tests name it. */
struct Range
{
    QString name;     ///< register type
    int start = 0;    ///< address number
    int count = 1;    ///< words, or bits of a bit type
    int station = 1;  ///< station number
    int kind = 0;     ///< of a write or condition read
    int unit = 0;     ///< recipe: first unit in the buffer
    int owner = 7;    ///< recipe: owner key
};

/** Whether values of the type are bits, a byte each, rather than words of two bytes. */
bool isBitType(const QString &name);
/** Bytes of one of the range's values as the host passes it. */
int widthOf(const Range &range);

/** The values of a range as `memory` holds them, laid out as the host passes values. */
QByteArray valuesIn(const plc::Memory &memory, const Range &range);
/** Stores values of that layout in `memory`; of a word with bits only those in the range change. */
void putValues(plc::Memory *memory, const Range &range, const QByteArray &values);
/** The same values as the recipe buffer holds them: a unit of two bytes each. */
QByteArray asUnits(const Range &range, const QByteArray &values);

/** A frame around `body`: opening byte, body, checksum, closing byte. */
QByteArray wrapped(char open, const QByteArray &body, char close);

enum : char { STX = 0x02, ETX = 0x03, EOT = 0x04, ACK = 0x06 };

/** One bench at a time. */
class Bench
{
public:
    static constexpr int RecipeUnits = 4096;

    /** Loads the driver afresh and registers the callback; init() is the test's. */
    Bench();
    ~Bench();

    bool init(const QByteArray &propertyText);
    int monitor(const QVector<Range> &keys);
    void condition(const Range &range);
    int recipe(const QVector<Range> &entries);
    void write(const Range &range, const QByteArray &values);
    QByteArray get(const Range &range);
    /** The same values as the controller holds them. */
    QByteArray held(const Range &range) const { return valuesIn(memory, range); }

    /** Asks the driver for the next frame; true when `frame` holds one, checked for consistency. */
    bool send();
    /** The bytes of `frame`. */
    QByteArray request() const;
    /** Sends `frame` to the controller and returns its reply. */
    QByteArray answer();
    int reply(const QByteArray &bytes);
    /** One exchange without faults: "-" when nothing is sent, else a text such as "rD100x2". */
    QString exchange();
    /** Exchanges until the driver has nothing to send twice running, at most 3000. */
    void drain();

    Driver driver;
    plc::Memory memory;
    plc::Controller controller{memory};
    std::unique_ptr<unsigned char[]> shared{new unsigned char[SharedBlockBytes]()};
    std::unique_ptr<unsigned char[]> buffer{new unsigned char[RecipeUnits * 2]()};
    QMutex mutex;
    FRAME_PRO frame;    ///< the last that was offered
    QString errorText;  ///< of the last reply
    QStringList calls;  ///< callbacks as texts: "D_W 100", "RWI 0", "done -1"
    std::function<void(const QString &call)> reaction;  ///< what the panel does inside a callback
    QStringList flaws;                                  ///< what may never happen but did

private:
    static void callBack(int first, int stationNo, const QString &text, int address);
    void checkFrame();

    QString asked_;  ///< the request that the controller served last
};

#endif
