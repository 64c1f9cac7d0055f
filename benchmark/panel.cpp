// A panel with nothing around it.
#include "panel.h"

#include <vector>

namespace panel {

namespace {
unsigned char shared[SharedBlockBytes];
unsigned char recipeBuffer[65536];
QMutex mutex;
FRAME_PRO frame;
QString errorText;
}  // namespace

void start(int blockLimit)
{
    const QByteArray properties = "1#0#0#3#" + QByteArray::number(blockLimit);
    int result = 0;
    intf_initProperty(shared, nullptr, recipeBuffer, &result, properties.constData(), &mutex);
}

KEY_ADDRESS key(int stationNo, const char *regName, int startAddr, int count)
{
    KEY_ADDRESS made;
    made.stationNo = stationNo;
    made.regName = QLatin1String(regName);
    made.startAddr = startAddr;
    made.count = count;
    return made;
}

void fillCache(int areas)
{
    std::vector<unsigned char> out(2 * AreaWords);
    for (int stationNo = 1000; areas > 0; ++stationNo, areas -= AreaWords)
        intf_getData(stationNo, QLatin1String("N_W"), 0, qMin<int>(areas, AreaWords), out.data());
}

QByteArray readReply(int words, int value)
{
    QByteArray data = QByteArray::number(value, 16).rightJustified(4, '0').toUpper();
    data = data.mid(2) + data.left(2);
    QByteArray reply = 'r' + data.repeated(words);
    unsigned sum = 0;
    for (const char character : reply)
        sum += static_cast<unsigned char>(character);
    const QByteArray checksum = QByteArray::number(sum & 0xFF, 16).rightJustified(2, '0').toUpper();
    return '\x06' + reply + checksum + '\x04';
}

bool exchange(const QByteArray &reply)
{
    return intf_getSendFrame(&frame) == 1 && intf_dealRcvFrame(reply, &errorText) == 1;
}

}  // namespace panel
