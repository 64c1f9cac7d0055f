// Arbitrary bytes as the reply to every kind of frame in flight: judged, decoded, the item ended.
//
// First byte: the request (low bits) and whether the reply gets a right frame around it (bit 7).
// The rest is the reply. The driver is set up once; each run leaves its queues empty, as it found
// them.
#include "invariants.h"

namespace {

unsigned char shared[SharedBlockBytes];
unsigned char recipeBuffer[1024];
QMutex mutex;

void onChange(int, int, const QString &text, int address)
{
    // What a host does in its callback: it reads back.
    unsigned char out[2];
    intf_getData(1, text, address, 1, out);
}

void setUp()
{
    intf_setAddrValueChangeCallBack(onChange);
    intf_initProperty(shared, nullptr, recipeBuffer, nullptr, "1#0#0#1#127", &mutex);
    intf_setRcpAddress({entryOf("D_W", 10, 20, 0), entryOf("M_bit", 163, 20, 100),
                        entryOf("TX", 30, 5, 200), entryOf("D_W", 30, 2, 300)});
    // Monitored, so that changes are reported, but not polled.
    intf_addrMerge({keyOf("D_W", 100, 60), keyOf("M_bit", 325, 40), keyOf("CX", 35, 7)});
    driver.loop.readList.clear();
}

/** Puts one request of a kind in flight. */
void ask(int request)
{
    static const KEY_ADDRESS keys[] = {
        keyOf("D_W", 100, 127), keyOf("M_bit", 325, 70), keyOf("CX", 35, 7), keyOf("D_W", 100, 8),
        keyOf("M_bit", 325, 1), keyOf("M_bit", 325, 32), keyOf("TX", 30, 9)};
    static const unsigned char values[32] = {1, 0, 1, 1, 0, 0, 1};
    const KEY_ADDRESS &key = keys[request % 9 % 7];
    if (request % 9 >= 7)
        shared[request % 9 == 7 ? RecipeWriteRequest : RecipeReadRequest] = 1;
    else if (request % 9 >= 3)
        intf_setData(1, key.regName, key.startAddr, key.count, values, 1);
    else
        intf_addConditionRead(key, 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool isSetUp = (setUp(), true);
    if (size == 0 || !isSetUp)
        return 0;
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data + 1), int(size) - 1);
    const QByteArray reply = data[0] & 0x80 ? framedReply(bytes) : bytes;
    ask(data[0] & 0x7F);
    static FRAME_PRO frame;
    QString text;
    for (driver.loop.runCount = 0; intf_getSendFrame(&frame) == 1; driver.loop.runCount = 0) {
        checkFrame(frame);
        const int result = intf_dealRcvFrame(reply, &text);
        require(result == 1 || result == 2, "neither good nor given up");
    }
    require(driver.loop.writeList.isEmpty() && driver.loop.condReadList.isEmpty(),
            "an item is left over");
    require(!shared[RecipeWriteRequest] && !shared[RecipeReadRequest], "a request is left over");
    if (frame.readCount == 0)
        checkWritesSettled();  // a write was the last
    static int runs = 0;
    if (++runs % 10000 == 0)
        checkDataAreas();
    return 0;
}
