// The cache of the controller's memory and the index behind it.
#include "data_area.h"

namespace {

/** Unit addresses per page of the index: small, for scattered addresses cost a page each. */
enum { PageUnits = 64 };

bool hasKeys(const _DATA_ &area, int stationNo, const QString &areaName, int unitAddr)
{
    // Areas share the texts of the register tables, so the pointers decide nearly always.
    return area.unitAddr == unitAddr && area.stationNo == stationNo &&
           (area.areaName.constData() == areaName.constData() || area.areaName == areaName);
}

int appendDataArea(int stationNo, const QString &areaName, int unitAddr, QList<_DATA_> &list)
{
    _DATA_ area = {0, 0, 0, 0, 0, stationNo, areaName, unitAddr, {0, 0, 0, 0}, {0, 0, 0, 0}};
    list.append(area);
    return int(list.size()) - 1;
}

void restartIndex()
{
    DataAreaIndex &index = driver.areaIndex;
    index.covered = 0;
    ++index.epoch;
    index.tables.clear();
    index.pages.clear();
    index.cells.clear();
}

int tableOf(int stationNo, const QString &areaName)
{
    QHash<QPair<int, QString>, int> &tables = driver.areaIndex.tables;
    const QPair<int, QString> key(stationNo, areaName);
    const QHash<QPair<int, QString>, int>::const_iterator found = tables.constFind(key);
    if (found != tables.constEnd())
        return found.value();
    const int table = int(tables.size());
    tables.insert(key, table);
    return table;
}

int firstCellOf(int table, int page)
{
    DataAreaIndex &index = driver.areaIndex;
    const quint64 key = quint64(quint32(table)) << 32 | quint32(page);
    const QHash<quint64, int>::const_iterator found = index.pages.constFind(key);
    if (found != index.pages.constEnd())
        return found.value();
    const int firstCell = int(index.cells.size());
    index.cells.resize(firstCell + PageUnits);
    index.pages.insert(key, firstCell);
    return firstCell;
}

int pageOf(int unitAddr)
{
    return unitAddr >> 6;
}

int cellInPage(int unitAddr)
{
    return unitAddr & (PageUnits - 1);
}

/** Enters the areas that stand in the list but not yet in the index; the first of equals wins. */
void coverList()
{
    DataAreaIndex &index = driver.areaIndex;
    if (index.covered > driver.dataAreaList.size())
        restartIndex();
    for (; index.covered < driver.dataAreaList.size(); ++index.covered) {
        const _DATA_ &area = driver.dataAreaList.at(index.covered);
        const int table = tableOf(area.stationNo, area.areaName);
        const int cell = firstCellOf(table, pageOf(area.unitAddr)) + cellInPage(area.unitAddr);
        if (index.cells.at(cell) == 0)
            index.cells[cell] = index.covered + 1;
    }
}

/** Whether the last area of the list stands where the index says. */
bool lastAreaIsIndexed()
{
    if (driver.dataAreaList.isEmpty())
        return true;
    const int last = int(driver.dataAreaList.size()) - 1;
    const _DATA_ &area = driver.dataAreaList.at(last);
    const int firstCell =
        firstCellOf(tableOf(area.stationNo, area.areaName), pageOf(area.unitAddr));
    return driver.areaIndex.cells.at(firstCell + cellInPage(area.unitAddr)) == last + 1;
}

}  // namespace

AreaLookup::AreaLookup(int stationNo, const QString &areaName)
    : m_stationNo(stationNo),
      m_areaName(areaName),
      m_table(tableOf(stationNo, areaName)),
      m_page(-1),
      m_firstCell(-1),
      m_epoch(driver.areaIndex.epoch)
{
}

int AreaLookup::cellOf(int unitAddr)
{
    if (m_epoch != driver.areaIndex.epoch)
        *this = AreaLookup(m_stationNo, m_areaName);
    if (m_firstCell < 0 || m_page != pageOf(unitAddr)) {
        m_page = pageOf(unitAddr);
        m_firstCell = firstCellOf(m_table, pageOf(unitAddr));
    }
    return m_firstCell + cellInPage(unitAddr);
}

int AreaLookup::indexOf(int unitAddr)
{
    DataAreaIndex &index = driver.areaIndex;
    for (bool rebuilt = false;; rebuilt = true) {
        if (index.covered != driver.dataAreaList.size())
            coverList();
        const int cell = cellOf(unitAddr);
        const int found = index.cells.at(cell) - 1;
        if (found >= 0 && hasKeys(driver.dataAreaList.at(found), m_stationNo, m_areaName, unitAddr))
            return found;
        if (rebuilt || (found < 0 && lastAreaIsIndexed())) {
            const int added =
                appendDataArea(m_stationNo, m_areaName, unitAddr, driver.dataAreaList);
            index.cells[cell] = added + 1;
            index.covered = added + 1;
            return added;
        }
        // The list was emptied and filled again to the same length by somebody else.
        restartIndex();
    }
}

int getIndexOfDataArea(int stationNo, const QString &areaName, int unitAddr, QList<_DATA_> &list)
{
    if (&list == &driver.dataAreaList)
        return AreaLookup(stationNo, areaName).indexOf(unitAddr);
    for (int i = 0; i < list.size(); ++i) {
        if (hasKeys(list.at(i), stationNo, areaName, unitAddr))
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
