// Arbitrary sequences of host calls, with callbacks that call back in.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>

#include "serviceForProtocol/data_area.h"

namespace {

// ---- What must hold of the driver's state whatever the wire and the host do -------------------

/** The two checksum characters of some bytes. */
const char *checksumOf(const unsigned char *bytes, int length)
{
    static char text[3];
    unsigned sum = 0;
    for (int i = 0; i < length; ++i)
        sum += bytes[i];
    text[0] = "0123456789ABCDEF"[sum >> 4 & 0xF];
    text[1] = "0123456789ABCDEF"[sum & 0xF];
    return text;
}

/** Ends the process with a message when the condition does not hold. */
void require(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "invariant broken: %s\n", what);
    std::abort();
}

/** A frame on offer: length, control bytes, checksum. */
void checkFrame(const FRAME_PRO &frame)
{
    const unsigned char *const bytes = frame.frame;
    const int length = frame.sendLen;
    require(frame.readCount >= 0 && frame.readCount <= 127, "frame reads beyond 127 words");
    require(length >= 14 && length <= 14 + 4 * 127, "frame of impossible length");
    require(bytes[0] == 2 && bytes[length - 1] == 3, "frame without STX and ETX");
    require(!std::memcmp(bytes + length - 3, checksumOf(bytes + 1, length - 4), 2),
            "frame with a wrong checksum");
}

/** At most one data area a key: the look-up finds each at its place and appends nothing. */
void checkDataAreas()
{
    const int size = int(driver.cache.dataAreaList.size());
    for (int i = 0; i < size; ++i) {
        const _DATA_ area = driver.cache.dataAreaList.at(i);
        require(getIndexOfDataArea(area.stationNo, area.areaName, area.unitAddr) == i,
                "a data area is not found, or another of its key");
    }
    require(driver.cache.dataAreaList.size() == size,
            "looking up what is there appended something");
}

/** With nothing left to write, no data area shows a written value unless a mark is outstanding. */
void checkWritesSettled()
{
    for (int i = 0; i < driver.cache.dataAreaList.size() && driver.loop.writeList.isEmpty(); ++i) {
        const _DATA_ &area = driver.cache.dataAreaList.at(i);
        require(!area.hasWriteValue || area.writeBitMask != 0,
                "a written value is shown although its write has left the queue");
    }
}

/** Puts the right checksum and the control bytes around `body`. */
QByteArray framedReply(const QByteArray &body)
{
    const unsigned char *const bytes = reinterpret_cast<const unsigned char *>(body.constData());
    return '\x06' + body + checksumOf(bytes, int(body.size())) + '\x04';
}

// ---- What a host does ------------------------------------------------------------------------

enum { BufferUnits = 20000, MostElements = 1100 };

unsigned char shared[SharedBlockBytes];
unsigned char recipeBuffer[2 * (BufferUnits + MostElements)];
unsigned char values[2 * MostElements];
QMutex mutex;
FuzzedDataProvider *input;
int depth;
/** False once a write may have left the queue unsettled: by a flood, unsent, or from inside. */
bool writesSettle;

QString regName()
{
    static const char *const odd[] = {"", "X_W", "X_bit", "d_W", "D_W_bit", "TX_", "_", "_bit"};
    const int pick = input->ConsumeIntegralInRange(0, RegisterTypeCount + 7);
    return pick < RegisterTypeCount ? REG_LIST[pick] : QString(odd[pick - RegisterTypeCount]);
}

int address()
{
    const int kind = input->ConsumeIntegralInRange(0, 7);
    return kind == 0   ? input->ConsumeIntegral<int>()
           : kind == 1 ? input->PickValueInArray(
                             {-1, -16, 0x7FFFFFFF, -0x7FFFFFFF - 1, 32767, 32768, 65535, 180223})
                       : input->ConsumeIntegralInRange(0, 300);
}

int count()
{
    return input->ConsumeIntegralInRange(0, 9)
               ? input->ConsumeIntegralInRange(-1, 40)
               : input->PickValueInArray({-3, 126, 127, 128, 255, 256, 1016, 1017, 1024, 1025});
}

int station()
{
    return input->ConsumeIntegralInRange(0, 9) ? 1 : input->ConsumeIntegral<int>();
}

KEY_ADDRESS key()
{
    KEY_ADDRESS made;
    made.regName = regName();
    made.startAddr = address();
    made.count = count();
    made.stationNo = station();
    made.bitMark = input->ConsumeBool() ? -1 : 0;
    return made;
}

void monitor()
{
    QList<KEY_ADDRESS> keys;
    for (int n = input->ConsumeIntegralInRange(0, 6); n > 0; --n)
        keys.append(key());
    intf_addrMerge(keys);
}

void write()
{
    const std::string bytes = input->ConsumeRandomLengthString(16);
    std::memcpy(values, bytes.data(), bytes.size());
    const KEY_ADDRESS range = key();
    // Others than the known types are shown, but never sent; so is what no frame can address.
    const int last = range.regName.endsWith(QLatin1String("_W")) ? 32767 : 524287;
    writesSettle &= getIndexFromRegName(range.regName) >= 0 && range.startAddr >= 0 &&
                    range.startAddr <= last - qMax(0, range.count);
    intf_setData(range.stationNo, range.regName, range.startAddr, range.count, values, 7);
}

void read()
{
    static unsigned char out[2 * MostElements];
    intf_getData(station(), regName(), address(), count(), out);
}

void registerRecipe()
{
    QVector<_RCP_VAR_PRO> entries;
    for (int n = input->ConsumeIntegralInRange(0, 6); n > 0; --n) {
        const KEY_ADDRESS range = key();
        _RCP_VAR_PRO entry;
        entry.stationNo = range.stationNo;
        entry.regName = range.regName;
        entry.startAddr = range.startAddr;
        entry.count = range.count;
        entry.bufIndex = input->ConsumeIntegralInRange(-2, int(BufferUnits));
        entry.ownerKey = input->ConsumeIntegralInRange(0, 2);
        entries.append(entry);
    }
    intf_setRcpAddress(entries);
}

void startOver()
{
    if (input->ConsumeIntegralInRange(0, 7) > 0)
        return;
    const std::string text =
        input->ConsumeBool()
            ? input->PickValueInArray({"1#0#0#3#64", "1#0#0#1#1", "1#0#0#2#0", "1#1#0#3#-5",
                                       "1#0#0#3#2147483647", "", "####", "x#y#z#3#300"})
            : input->ConsumeRandomLengthString(40);
    intf_initProperty(input->ConsumeIntegralInRange(0, 9) ? shared : nullptr, nullptr,
                      input->ConsumeIntegralInRange(0, 9) ? recipeBuffer : nullptr, nullptr,
                      text.c_str(), input->ConsumeIntegralInRange(0, 9) ? &mutex : nullptr);
    writesSettle = true;
}

void exchange()
{
    // Finishing an exchange from inside a report may come before all of a write is stored.
    writesSettle &= depth == 0;
    FRAME_PRO frame;
    QString text;
    if (intf_getSendFrame(&frame) == 0)
        return;
    checkFrame(frame);
    const int words = frame.var.regName.endsWith(QLatin1String("_W")) ? 1 : 16;
    require(frame.var.startAddr >= 0 && frame.var.startAddr / words <= 32767,
            "a frame that begins where its address field does not reach");
    const std::string some = input->ConsumeRandomLengthString(40);
    QByteArray data(some.data(), int(some.size()));
    const int kind = input->ConsumeIntegralInRange(0, 5);
    if (kind > 1)
        data = framedReply('r' + data.leftJustified(frame.readCount * 4, '0'));
    else if (kind == 1)
        data = framedReply(data);
    intf_dealRcvFrame(data, input->ConsumeBool() ? &text : nullptr);
}

void conditionRead()
{
    intf_addConditionRead(key(), 5);
}

void requestTransfer()
{
    shared[RecipeWriteRequest] = input->ConsumeBool();
    shared[RecipeReadRequest] = input->ConsumeBool();
}

void step()
{
    void (*const steps[])() = {monitor,   conditionRead, write,          write,
                               read,      read,          registerRecipe, requestTransfer,
                               startOver, exchange,      exchange,       exchange,
                               exchange,  exchange,      exchange,       exchange};
    steps[input->ConsumeIntegralInRange(0, 15)]();
    writesSettle &= driver.settings.propItem1 == 0 && driver.loop.writeList.size() < QueueLimit;
    require(driver.loop.writeList.size() <= 513, "write queue beyond 513");
    require(driver.loop.condReadList.size() <= 513, "condition-read queue beyond 513");
    if (writesSettle && depth == 0)
        checkWritesSettled();
}

void onChange(int, int, const QString &, int)
{
    if (depth >= 2 || input->remaining_bytes() == 0 || !input->ConsumeBool())
        return;
    ++depth;
    step();
    --depth;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider provider(data, size);
    input = &provider;
    depth = 0;
    writesSettle = true;
    shared[RecipeWriteRequest] = shared[RecipeReadRequest] = 0;
    intf_setRcpAddress(QVector<_RCP_VAR_PRO>());
    intf_setAddrValueChangeCallBack(onChange);
    intf_initProperty(shared, nullptr, recipeBuffer, nullptr, "1#0#0#3#64", &mutex);
    for (int i = 0; i < 100 && provider.remaining_bytes() > 0; ++i)
        step();
    checkDataAreas();
    return 0;
}
