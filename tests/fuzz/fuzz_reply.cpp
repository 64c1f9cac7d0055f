// Arbitrary bytes as replies to every kind of frame in flight.
//
// First byte: the request (low bits), whether the reply gets a right frame around it (bit 6), and
// whether the driver offers it twice (bit 7). The rest is the reply.
#include "invariants.h"

namespace {

unsigned char shared[SharedBlockBytes];
unsigned char recipeBuffer[4096];
QMutex mutex;

void onChange(int, int, const QString &text, int address)
{
    // What a host does in its callback: it reads back.
    unsigned char out[2];
    intf_getData(1, text, address, 1, out);
}

KEY_ADDRESS key(const char *regName, int startAddr, int count)
{
    KEY_ADDRESS made;
    made.stationNo = 1;
    made.regName = QLatin1String(regName);
    made.startAddr = startAddr;
    made.count = count;
    made.bitMark = made.regName.endsWith(QLatin1String("_W")) ? 0 : -1;
    return made;
}

_RCP_VAR_PRO entry(const char *regName, int startAddr, int count, int bufIndex)
{
    _RCP_VAR_PRO made;
    made.ownerKey = 1;
    made.stationNo = 1;
    made.regName = QLatin1String(regName);
    made.startAddr = startAddr;
    made.count = count;
    made.bufIndex = bufIndex;
    return made;
}

/** Puts one request of each kind in flight. */
void ask(int request)
{
    const unsigned char values[32] = {1, 0, 1, 1, 0, 0, 1};
    switch (request % 10) {
        case 0:
            intf_addrMerge({key("D_W", 100, 20), key("D_W", 110, 100)});
            break;
        case 1:
            intf_addrMerge({key("M_bit", 325, 40), key("TX", 5, 30)});
            break;
        case 2:
            intf_addrMerge({key("TX", 5, 30)});
            break;
        case 3:
            intf_addConditionRead(key("CX", 35, 7), 1);
            break;
        case 4:
            intf_addConditionRead(key("L_bit", 325, 70), 1);
            break;
        case 5:
            intf_setData(1, QLatin1String("D_W"), 100, 8, values, 1);
            break;
        case 6:
            intf_setData(1, QLatin1String("M_bit"), 325, 1, values, 1);
            break;
        case 7:
            intf_addrMerge({key("M_bit", 320, 64)});
            intf_setData(1, QLatin1String("M_bit"), 325, 32, values, 1);
            break;
        default:
            intf_setRcpAddress({entry("D_W", 10, 20, 0), entry("M_bit", 163, 20, 100),
                                entry("TX", 30, 5, 200), entry("D_W", 30, 2, 300)});
            shared[request % 10 == 8 ? RecipeWriteRequest : RecipeReadRequest] = 1;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    shared[RecipeWriteRequest] = shared[RecipeReadRequest] = 0;
    intf_setAddrValueChangeCallBack(onChange);
    intf_initProperty(shared, nullptr, recipeBuffer, nullptr, "1#0#0#3#64", &mutex);
    ask(data[0] & 0x3F);

    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), int(size) - 1);
    const QByteArray reply = data[0] & 0x40 ? framedReply(bytes) : bytes;
    FRAME_PRO frame;
    QString text;
    for (int i = 0; i < 6 && intf_getSendFrame(&frame) == 1; ++i) {
        checkQueuesAndFrames();
        intf_dealRcvFrame(i % 2 && data[0] & 0x80 ? goodReply(frame, bytes) : reply, &text);
    }
    checkQueuesAndFrames();
    checkDataAreas();
    checkWritesSettled();
    return 0;
}
