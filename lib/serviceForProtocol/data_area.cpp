// The cache of the controller's memory and the index behind it.
#include "data_area.h"

namespace {

int appendDataArea(int stationNo, const QString &areaName, int unitAddr, QList<_DATA_> &list)
{
    const _DATA_ area = {0, 0, 0, 0, 0, stationNo, areaName, unitAddr, {0, 0, 0, 0}, {0, 0, 0, 0}};
    list.append(area);
    return int(list.size()) - 1;
}

void restartIndex()
{
    DataAreaIndex &index = driver.areaIndex;
    index.covered = 0;
    index.tables.clear();
    index.pages.clear();
    index.cells.clear();
}

/** The value of a key, which is inserted with `fresh` when it is new. */
template <typename Key>
int findOrInsert(QHash<Key, int> &hash, const Key &key, int fresh)
{
    const typename QHash<Key, int>::const_iterator found = hash.constFind(key);
    if (found != hash.constEnd())
        return found.value();
    hash.insert(key, fresh);
    return fresh;
}

}  // namespace

AreaLookup::AreaLookup(int stationNo, const QString &areaName)
    : m_stationNo(stationNo), m_areaName(areaName), m_page(NoPage), m_firstCell(0)
{
    if (driver.areaIndex.covered != driver.dataAreaList.size())
        rebuildIndex();  // somebody else filled or emptied the list
}

/** The cell of the index where the area belongs; its page is made when missing. */
int AreaLookup::cellFor(int stationNo, const QString &areaName, int unitAddr)
{
    DataAreaIndex &index = driver.areaIndex;
    const int table =
        findOrInsert(index.tables, qMakePair(stationNo, areaName), int(index.tables.size()));
    const int room = int(index.cells.size());
    const quint64 page = quint64(quint32(table)) << 32 | quint32(pageOf(unitAddr));
    const int firstCell = findOrInsert(index.pages, page, room);
    if (firstCell == room)
        index.cells.resize(room + PageUnits);
    return firstCell + cellInPage(unitAddr);
}

/** Enters all areas of the list; the first of equals wins. */
void AreaLookup::rebuildIndex()
{
    restartIndex();
    DataAreaIndex &index = driver.areaIndex;
    for (; index.covered < driver.dataAreaList.size(); ++index.covered) {
        const _DATA_ &area = driver.dataAreaList.at(index.covered);
        int &cell = index.cells[cellFor(area.stationNo, area.areaName, area.unitAddr)];
        if (cell == 0)
            cell = index.covered + 1;
    }
}

bool AreaLookup::lastAreaIsIndexed()
{
    const int last = int(driver.dataAreaList.size()) - 1;
    if (last < 0)
        return true;
    const _DATA_ &area = driver.dataAreaList.at(last);
    const int cell = cellFor(area.stationNo, area.areaName, area.unitAddr);
    return driver.areaIndex.cells.at(cell) == last + 1;
}

int AreaLookup::findOrAppend(int unitAddr)
{
    DataAreaIndex &index = driver.areaIndex;
    int cell = cellFor(m_stationNo, m_areaName, unitAddr);
    int found = index.cells.at(cell) - 1;
    if ((found >= 0 && !isArea(driver.dataAreaList.at(found), unitAddr)) ||
        (found < 0 && !lastAreaIsIndexed())) {
        // Somebody else emptied the list and filled it again to the same length.
        rebuildIndex();
        cell = cellFor(m_stationNo, m_areaName, unitAddr);
        found = index.cells.at(cell) - 1;
    }
    m_page = pageOf(unitAddr);
    m_firstCell = cell - cellInPage(unitAddr);
    if (found < 0) {
        found = appendDataArea(m_stationNo, m_areaName, unitAddr, driver.dataAreaList);
        index.cells[cell] = found + 1;
        index.covered = found + 1;
    }
    return found;
}

int getIndexOfDataArea(int stationNo, const QString &areaName, int unitAddr, QList<_DATA_> &list)
{
    if (&list == &driver.dataAreaList)
        return AreaLookup(stationNo, areaName).indexOf(unitAddr);
    for (int i = 0; i < list.size(); ++i) {
        const _DATA_ &area = list.at(i);
        if (area.stationNo == stationNo && area.areaName == areaName && area.unitAddr == unitAddr)
            return i;
    }
    return appendDataArea(stationNo, areaName, unitAddr, list);
}

int _setBitValue(int value, int bit, int on)
{
    const quint32 mask = quint32(1) << bit;
    return int(on ? quint32(value) | mask : quint32(value) & ~mask);
}

int _setDataAreaMonitorFlag(int stationNo, const QString &regName, int startAddr, int count)
{
    forEachUnit(stationNo, registerType(regName), startAddr, count, [](const Unit &unit) {
        if (unit.kind == WordBitUnit)
            unit.area().bitMonitorMask |= quint32(1) << unit.bit;
        else
            unit.area().monitorFlags |= 1;
    });
    return 0;
}

void clearDataAreas()
{
    driver.dataAreaList.clear();
    restartIndex();
    ++driver.cacheNo;
}
