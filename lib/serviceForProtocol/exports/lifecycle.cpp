// Exports: the host's callback, and starting over.
#include <QtCore/QStringList>

#include "../../tolvane_link/tolvane_link.h"
#include "../data_area.h"
#include "loop.h"

void intf_setAddrValueChangeCallBack(ValueChangeCallBack callBack)
{
    driver.settings.valueChangeCallBack = callBack;
}

int intf_initProperty(unsigned char *hostShared, void *hostContext, unsigned char *rcpBuffer,
                      int *result, const char *propertyText, QMutex *hostMutex)
{
    if (result)
        *result = 0;
    const QStringList parts = QString::fromLatin1(propertyText).split(QLatin1Char('#'));
    if (parts.size() > 4) {
        driver.settings.propItem0 = parts.at(0).toInt();
        driver.settings.propItem1 = parts.at(1).toInt();
        driver.settings.propItem2 = parts.at(2).toInt();
        driver.settings.propItem3 = parts.at(3).toInt();
        driver.settings.propItem4 = parts.at(4).toInt();
    }
    driver.settings.hostShared = hostShared;
    driver.settings.hostContext = hostContext;
    driver.settings.rcpBuffer = rcpBuffer;
    driver.settings.hostMutex = hostMutex;

    clearDataAreas();
    // Merging, bridging and cutting keep to one limit: at least a word, at most a frame.
    driver.settings.mergeWords = qBound(1, driver.settings.propItem4, wordsPerRequest());
    driver.settings.mergeBits = driver.settings.mergeWords * 8;
    restartLoop();
    return 1;
}
