// Arbitrary sequences of host calls, with callbacks that call back in.
//
// Counts are kept to a few thousand: a host that monitors two thousand million addresses asks for
// that much memory, which is no fault of the driver.
#include <fuzzer/FuzzedDataProvider.h>

#include "invariants.h"

namespace {

/** A cache up to AreasWatched is looked through after every step, a larger one at the end. */
enum { BufferUnits = 20000, MostElements = 3000, AreasWatched = 200 };

unsigned char shared[SharedBlockBytes];
unsigned char recipeBuffer[2 * (BufferUnits + MostElements + MaxBitsPerWrite)];
QMutex mutex;
FuzzedDataProvider *input;
int depth;
/** False once a write may have left the queue unsettled: by a flood, unsent, or from inside. */
bool writesSettle;

QString regName()
{
    static const char *const odd[] = {"", "X_W", "X_bit", "d_W", "D_W_bit", "TX_", "_", "_bit"};
    const int pick = input->ConsumeIntegralInRange(0, 25);
    return pick < RegisterTypeCount ? REG_LIST[pick]
                                    : QString(QLatin1String(odd[pick - RegisterTypeCount]));
}

int address()
{
    switch (input->ConsumeIntegralInRange(0, 7)) {
        case 0:
            return input->ConsumeIntegral<int>();
        case 1:
            return input->PickValueInArray(
                {-1, -16, 0x7FFFFFFF, -0x7FFFFFFF - 1, 32767, 65535, 180223});
        default:
            return input->ConsumeIntegralInRange(0, 300);
    }
}

int count()
{
    return input->ConsumeIntegralInRange(0, 5)
               ? input->ConsumeIntegralInRange(-1, 40)
               : input->ConsumeIntegralInRange(-3, int(MostElements));
}

int station()
{
    return input->ConsumeIntegralInRange(0, 9) ? 1 : input->ConsumeIntegral<int>();
}

KEY_ADDRESS key()
{
    KEY_ADDRESS made;
    made.stationNo = station();
    made.regName = regName();
    made.startAddr = address();
    made.count = count();
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
    unsigned char values[2 * MostElements];
    const std::string bytes = input->ConsumeRandomLengthString(64);
    for (size_t i = 0; i < sizeof values; ++i)
        values[i] = static_cast<unsigned char>(bytes.empty() ? i : size_t(bytes[i % bytes.size()]));
    const QString name = regName();
    writesSettle &= getIndexFromRegName(name) >= 0;  // others are shown, but never sent
    intf_setData(station(), name, address(), count(), values, 7);
}

void read()
{
    unsigned char out[2 * MostElements];
    intf_getData(station(), regName(), address(), count(), out);
}

void registerRecipe()
{
    QVector<_RCP_VAR_PRO> entries;
    for (int n = input->ConsumeIntegralInRange(0, 6); n > 0; --n) {
        _RCP_VAR_PRO entry;
        entry.ownerKey = input->ConsumeIntegralInRange(0, 2);
        entry.stationNo = station();
        entry.regName = regName();
        entry.startAddr = address();
        entry.count = count();
        entry.bufIndex = input->ConsumeIntegralInRange(-2, int(BufferUnits));
        entries.append(entry);
    }
    intf_setRcpAddress(entries);
}

void startOver()
{
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
    if (intf_getSendFrame(input->ConsumeIntegralInRange(0, 20) ? &frame : nullptr) == 0)
        return;
    const std::string bytes = input->ConsumeRandomLengthString(40);
    const QByteArray data(bytes.data(), int(bytes.size()));
    const int kind = input->ConsumeIntegralInRange(0, 5);
    intf_dealRcvFrame(kind == 0   ? data
                      : kind == 1 ? framedReply(data)
                                  : goodReply(frame, data),
                      input->ConsumeBool() ? &text : nullptr);
}

void ask()
{
    int number = 0;
    QVector<QString> texts;
    QVector<int> numbers;
    const QString name = regName();
    const QString text = QString::fromStdString(input->ConsumeRandomLengthString(12));
    intf_checkAddrValidity(name, text, &number, count(), input->ConsumeBool());
    intf_checkAddr(name, text, input->ConsumeBool() ? &number : nullptr, address(), address(), 1);
    intf_multiCopy(name, address(), count(), input->ConsumeIntegral<int>(), texts, numbers);
}

void step()
{
    switch (input->ConsumeIntegralInRange(0, 15)) {
        case 0:
            monitor();
            break;
        case 1:
            intf_addConditionRead(key(), 5);
            break;
        case 2:
        case 3:
            write();
            break;
        case 4:
            read();
            break;
        case 5:
            registerRecipe();
            break;
        case 6:
            if (input->ConsumeIntegralInRange(0, 7) == 0)
                startOver();
            break;
        case 7:
            shared[RecipeWriteRequest] = input->ConsumeBool();
            shared[RecipeReadRequest] = input->ConsumeBool();
            break;
        case 8:
            ask();
            break;
        default:
            exchange();
    }
    writesSettle &= driver.propItem1 == 0 && driver.writeList.size() < QueueLimit;
    checkQueuesAndFrames();
    if (depth > 0)
        return;
    if (driver.dataAreaList.size() <= AreasWatched)
        checkDataAreas();
    if (writesSettle)
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
    for (int i = 0; i < 400 && provider.remaining_bytes() > 0; ++i)
        step();
    checkDataAreas();
    if (writesSettle)
        checkWritesSettled();
    return 0;
}
