// What the room's door offers to links that need it; this one gets along without.
#include "wire.h"

QString refusalText(const QByteArray &)
{
    return QString();
}

void handShakeFrame()
{
    driver.loop.frameList.append(FRAME_PRO());
}

quint16 computate_check(const quint8 *bytes, quint16 length)
{
    unsigned sum = 0;
    for (int i = 0; i < length; ++i)
        sum += bytes[i];
    return static_cast<quint16>(sum);
}

int allMix_GetDataStartPosition(const QByteArray &, const QList<VARIABLE> &, int i)
{
    const int dataStart = driver.loop.frameList.value(driver.loop.frameIndex).dataStart;
    if (i == 0 || driver.loop.itemsInFrame < 1)
        return dataStart;
    return dataStart + WordChars * qMin(i, driver.loop.itemsInFrame);
}

int allMix_GetRecvLenFromReadList(const QList<VARIABLE> &)
{
    return 0;
}
