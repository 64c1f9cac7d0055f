// The cache of the controller's memory: finding data areas, walking the storage units of a
// request, and marking the monitored ones.
#ifndef TOLVANE_DATA_AREA_H
#define TOLVANE_DATA_AREA_H

#include "../protocol.h"

/**
 * Position in `list` of the data area with these keys; the first one when there are several. A
 * missing area is appended with values 0 and no marks. In driver.dataAreaList this is a
 * constant-time look-up, in any other list a search. Whether somebody else filled or emptied
 * driver.dataAreaList is told by its length and its last area.
 */
int getIndexOfDataArea(int stationNo, const QString &areaName, int unitAddr, QList<_DATA_> &list);

/** `value` with bit number `bit` (0 to 31) set when `on` is not 0, else cleared. */
int _setBitValue(int value, int bit, int on);

/**
 * Marks `count` consecutive addresses as monitored: bit addresses for "_bit" types. A count below
 * 1 or a name without a unit kind marks nothing. Always returns 0.
 */
int _setDataAreaMonitorFlag(int stationNo, const QString &regName, int startAddr, int count);

/** Empties the cache. */
void clearDataAreas();

/**
 * Finds the data areas of one station and area name in driver.dataAreaList, page by page. Lives no
 * longer than the cache that it was made for.
 */
class AreaLookup
{
public:
    AreaLookup(int stationNo, const QString &areaName);

    /** Position of the unit's data area, which is appended when missing. */
    int indexOf(int unitAddr)
    {
        // Nearly always the unit lies in the page of the one before.
        if (pageOf(unitAddr) == m_page) {
            const int found = driver.areaIndex.cells.at(m_firstCell + cellInPage(unitAddr)) - 1;
            if (found >= 0 && isArea(driver.dataAreaList.at(found), unitAddr))
                return found;
        }
        return findOrAppend(unitAddr);
    }

private:
    /** Unit addresses a page: few, for scattered addresses cost a page each. */
    enum { PageUnits = 64, NoPage = -0x7FFFFFFF };

    static int pageOf(int unitAddr) { return unitAddr >> 6; }
    static int cellInPage(int unitAddr) { return unitAddr & (PageUnits - 1); }
    bool isArea(const _DATA_ &area, int unitAddr) const
    {
        return area.unitAddr == unitAddr && area.stationNo == m_stationNo &&
               sameText(area.areaName, m_areaName);
    }
    int findOrAppend(int unitAddr);
    static void rebuildIndex();
    static bool lastAreaIsIndexed();
    static int cellFor(int stationNo, const QString &areaName, int unitAddr);

    int m_stationNo;
    QString m_areaName;
    int m_page;
    int m_firstCell;
};

/** One address of a request, with the storage unit it lives in. */
struct Unit
{
    UnitKind kind;
    int stationNo;
    int i;        ///< position of the address in the request, from 0
    int address;  ///< the address number
    int index;    ///< of the unit in driver.dataAreaList
    int bit;      ///< WordBitUnit: the bit in the word, 0 to 15
    quint32 cacheNo;

    /** The data area. Ask again after every report: the list may have grown meanwhile. */
    _DATA_ &area() const { return driver.dataAreaList[index]; }
    const _DATA_ &constArea() const { return driver.dataAreaList.at(index); }

    /** False when the host has emptied the cache from inside a report: area() is gone then. */
    bool stands() const { return cacheNo == driver.cacheNo; }
};

/**
 * Calls step(unit) for each of `count` addresses from startAddr on, in ascending order, creating
 * the data areas that are missing. Ends early when a step empties the cache. A type without a
 * unit kind has no units.
 */
template <typename Step>
void forEachUnit(int stationNo, const RegisterType &type, int startAddr, int count, Step step)
{
    if (type.unitKind == NoUnit)
        return;
    AreaLookup lookup(stationNo, type.areaName);
    const quint32 cacheNo = driver.cacheNo;
    const bool bitsOfWords = type.unitKind == WordBitUnit;
    for (int i = 0; i < count && cacheNo == driver.cacheNo; ++i) {
        const int address = addrPlus(startAddr, i);
        const int index = lookup.indexOf(bitsOfWords ? wordOfBit(address) : address);
        const int bit = bitsOfWords ? bitInWord(address) : 0;
        const Unit unit = {type.unitKind, stationNo, i, address, index, bit, cacheNo};
        step(unit);
    }
}

#endif
