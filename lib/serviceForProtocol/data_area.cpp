// The cache of the controller's memory and the index behind it.
#include "data_area.h"

int AreaLookup::findOrAppend(int unitAddr)
{
    m_page = pageOf(unitAddr);
    QVector<int> &page = driver.cache.index[m_key][m_page];
    if (page.isEmpty())
        page.resize(PageUnits);
    m_cells = page.data();
    int &position = m_cells[cellInPage(unitAddr)];
    if (position == 0) {
        const _DATA_ area = {0, 0, 0, 0, 0, m_key.first, m_key.second, unitAddr, {0}, {0}};
        driver.cache.dataAreaList.append(area);
        position = int(driver.cache.dataAreaList.size());
    }
    return position - 1;
}

int getIndexOfDataArea(int stationNo, const QString &areaName, int unitAddr)
{
    return AreaLookup(stationNo, areaName).indexOf(unitAddr);
}

int _setBitValue(int value, int bit, int on)
{
    const quint32 mask = quint32(1) << bit;
    return int(on ? quint32(value) | mask : quint32(value) & ~mask);
}

int _setDataAreaMonitorFlag(int stationNo, const RegisterType &type, int startAddr, int count)
{
    for (Unit unit(stationNo, type, startAddr, count); unit.next();) {
        if (type.unitKind == WordBitUnit)
            unit.area().bitMonitorMask |= quint32(1) << unit.bit();
        else
            unit.area().monitorFlags |= 1;
    }
    return 0;
}

void clearMarks()
{
    for (int i = 0; i < driver.cache.dataAreaList.size(); ++i) {
        _DATA_ &area = driver.cache.dataAreaList[i];
        area.writeBitMask = 0;
        area.monitorFlags = 0;
        area.bitMonitorMask = 0;
    }
}

void clearDataAreas()
{
    driver.cache.dataAreaList.clear();
    driver.cache.index = DataAreaIndex();
    ++driver.cache.number;
}
