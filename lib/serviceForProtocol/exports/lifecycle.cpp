// Exports: the host's callback, and starting over.
#include <QtCore/QStringList>

#include "../data_area.h"

namespace {

/** The block limit in bits, kept within an int whatever the property text says. */
int bitLimit(int words)
{
    const qint64 bits = qint64(words) * 8;
    return int(qBound(qint64(-0x7FFFFFFF), bits, qint64(0x7FFFFFFF)));
}

}  // namespace

void intf_setAddrValueChangeCallBack(ValueChangeCallBack callBack)
{
    driver.valueChangeCallBack = callBack;
}

int intf_initProperty(unsigned char *hostShared, void *hostContext, unsigned char *rcpBuffer,
                      int *result, const char *propertyText, QMutex *hostMutex)
{
    if (result)
        *result = 0;
    const QStringList parts = QString::fromLatin1(propertyText).split(QLatin1Char('#'));
    if (parts.size() > 4) {
        driver.propItem0 = parts.at(0).toInt();
        driver.propItem1 = parts.at(1).toInt();
        driver.propItem2 = parts.at(2).toInt();
        driver.propItem3 = parts.at(3).toInt();
        driver.propItem4 = parts.at(4).toInt();
    }
    driver.hostShared = hostShared;
    driver.hostContext = hostContext;
    driver.rcpBuffer = rcpBuffer;
    driver.hostMutex = hostMutex;

    driver.readList.clear();
    driver.readIndex = 0;
    driver.writeList.clear();
    driver.condReadList.clear();
    clearDataAreas();
    driver.sendState = Idle;
    driver.runCount = 0;
    driver.mergeWords = driver.propItem4;
    driver.mergeBits = bitLimit(driver.propItem4);
    driver.handShakeRequest = 0;
    driver.retryCount = 0;
    driver.lastFrameFailed = 0;
    driver.frameList.clear();
    driver.frameIndex = 0;
    driver.itemIsQueueHead = false;
    ++driver.exchangeNo;
    return 1;
}
