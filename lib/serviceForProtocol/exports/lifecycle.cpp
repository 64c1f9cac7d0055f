// Exports: the host's callback, and starting over.
#include <QtCore/QStringList>

#include "../../tolvane_link/tolvane_link.h"
#include "../data_area.h"
#include "loop.h"

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

    clearDataAreas();
    // Merging, bridging and cutting keep to one limit: at least a word, at most a frame.
    driver.mergeWords = qBound(1, driver.propItem4, wordsPerRequest());
    driver.mergeBits = driver.mergeWords * 8;
    restartLoop();
    return 1;
}
