// A driver with one fault, chosen by the environment variable BROKEN: the judge must find it. The
// functions that are not here are those of the real library, which this one is linked to.
#include <dlfcn.h>

#include <cstdlib>

#include "lib/host_interface.h"

namespace {

constexpr int FirstWord = 64;  // of D: where the faults are
constexpr int LastWord = 79;
constexpr int DataStart = 11;  // of a write-words frame
constexpr int WordChars = 4;

bool broken(const char *what)
{
    static const QByteArray chosen = qgetenv("BROKEN");
    return chosen == what;
}

template <typename Function>
Function real(Function, const char *name)
{
    static void *const library = dlopen(REAL_DRIVER, RTLD_NOW);
    void *const symbol = library ? dlsym(library, name) : nullptr;
    if (!symbol)
        qFatal("%s lacks %s", REAL_DRIVER, name);
    return reinterpret_cast<Function>(symbol);
}
#define REAL(function) real(&function, #function)

void putHex(unsigned char *at, int byte)
{
    at[0] = static_cast<unsigned char>("0123456789ABCDEF"[byte >> 4 & 0xF]);
    at[1] = static_cast<unsigned char>("0123456789ABCDEF"[byte & 0xF]);
}

// Turns one bit of a word on its way to the controller, in a frame that is well formed again.
void turnBit(FRAME_PRO *frame)
{
    const VARIABLE &item = frame->var;
    const int word = qMax(FirstWord, item.startAddr);
    if (frame->frame[1] != 'w' || item.regName != QLatin1String("D_W") || word > LastWord ||
        word >= item.startAddr + item.count)
        return;
    unsigned char *data = frame->frame + DataStart + WordChars * (word - item.startAddr);
    const int low = QByteArray(reinterpret_cast<char *>(data), 2).toInt(nullptr, 16);
    putHex(data, low ^ 1);
    int sum = 0;
    for (int i = 1; i < frame->sendLen - 3; ++i)
        sum += frame->frame[i];
    putHex(frame->frame + frame->sendLen - 3, sum);
}

}  // namespace

int intf_getSendFrame(FRAME_PRO *frame)
{
    const int result = REAL(intf_getSendFrame)(frame);
    if (result == 1 && broken("data on its way out"))
        turnBit(frame);
    return result;
}

int intf_setData(int stationNo, QString regName, int startAddr, int count,
                 const unsigned char *values, int kind)
{
    static int calls = 0;
    if (broken("a write swallowed") && ++calls % 40 == 0)
        return 1;
    return REAL(intf_setData)(stationNo, regName, startAddr, count, values, kind);
}

int intf_getData(int stationNo, QString regName, int startAddr, int count, unsigned char *out)
{
    const int result = REAL(intf_getData)(stationNo, regName, startAddr, count, out);
    const int word = qMax(FirstWord, startAddr);
    if (broken("data on its way in") && regName == QLatin1String("D_W") && word <= LastWord &&
        word < startAddr + count)
        out[2 * (word - startAddr)] ^= 1;
    return result;
}

int intf_dealRcvFrame(QByteArray reply, QString *errorText)
{
    const int result = REAL(intf_dealRcvFrame)(reply, errorText);
    if (broken("a silent failure") && result == 2)
        errorText->clear();
    return result;
}
