// The cache of the controller's memory: finding data areas, walking the storage units of a
// request, and marking the monitored ones. Nobody else adds to or empties
// driver.cache.dataAreaList.
#ifndef TOLVANE_DATA_AREA_H
#define TOLVANE_DATA_AREA_H

#include "../protocol.h"

/**
 * Position in driver.cache.dataAreaList of the data area with these keys. A missing area is
 * appended with values 0 and no marks.
 */
int getIndexOfDataArea(int stationNo, const QString &areaName, int unitAddr);

/** `value` with bit number `bit` (0 to 31) set when `on` is not 0, else cleared. */
int _setBitValue(int value, int bit, int on);

/**
 * Marks `count` consecutive addresses as monitored: bit addresses for "_bit" types. A count below
 * 1 or a type without a unit kind marks nothing. Always returns 0.
 */
int _setDataAreaMonitorFlag(int stationNo, const RegisterType &type, int startAddr, int count);

/** Takes the marks off all data areas: the monitored ones and those of outstanding bit writes. */
void clearMarks();

/** Empties the cache. */
void clearDataAreas();

/**
 * Finds the data areas of one station and area name in driver.cache.dataAreaList, page by page.
 * Lives no longer than the cache that it was made for.
 */
class AreaLookup
{
public:
    AreaLookup(int stationNo, const QString &areaName) : m_key(stationNo, areaName) {}

    /** Position of the unit's data area, which is appended when missing. */
    int indexOf(int unitAddr)
    {
        // Nearly always the unit lies in the page of the one before.
        if (m_cells && pageOf(unitAddr) == m_page && m_cells[cellInPage(unitAddr)] > 0)
            return m_cells[cellInPage(unitAddr)] - 1;
        return findOrAppend(unitAddr);
    }

    /**
     * How many of the units next to `unitAddr`, the one asked for last, were last read as `values`:
     * all of them, at most `most`, or those before the first that was not or whose page is another.
     */
    int alikeBehind(int unitAddr, const quint16 *values, int most) const
    {
        const int *const cells = m_cells + cellInPage(unitAddr) + 1;
        const int end = qMin(most, PageUnits - 1 - cellInPage(unitAddr));
        int n = 0;
        while (n < end && cells[n] > 0 &&
               driver.cache.dataAreaList.at(cells[n] - 1).readWord() == values[n])
            ++n;
        return n;
    }

private:
    /** Unit addresses a page: few, for scattered addresses cost a page each. */
    enum { PageUnits = 64 };

    static int pageOf(int unitAddr) { return unitAddr >> 6; }
    static int cellInPage(int unitAddr) { return unitAddr & (PageUnits - 1); }
    int findOrAppend(int unitAddr);

    const QPair<int, QString> m_key;  ///< copied once for all pages
    int m_page = 0;
    int *m_cells = 0;  ///< of the page, null before the first; pages stay where they are
};

/**
 * A walk over the storage units of `count` addresses from startAddr on, in ascending order, and the
 * one that it stands at. Data areas that are missing are created.
 *
 *     for (Unit unit(stationNo, type, startAddr, count); unit.next();)
 *
 * The walk ends early when the host empties the cache from inside a report. A type without a unit
 * kind has no units. The type stays the caller's.
 */
class Unit
{
public:
    Unit(int station, const RegisterType &registerType, int startAddr, int count)
        : type(registerType),
          stationNo(station),
          i(-1),
          index(-1),
          m_startAddr(startAddr),
          m_count(type.unitKind == NoUnit ? 0 : count),
          m_cacheNo(driver.cache.number),
          m_lookup(stationNo, type.areaName)
    {
    }

    bool next()
    {
        if (++i >= m_count || !stands())
            return false;
        index = m_lookup.indexOf(type.unitKind == WordBitUnit ? wordOfBit(address()) : address());
        return true;
    }

    /**
     * The same, of word or bit units, to the next one that was not last read as values[i]. Its own
     * is looked at alone, those that follow in its page at one go: nearly always none has changed.
     */
    bool nextUnlike(const quint16 *values)
    {
        while (next()) {
            if (constArea().readWord() != values[i])
                return true;
            i += m_lookup.alikeBehind(address(), values + i + 1, m_count - i - 1);
        }
        return false;
    }

    const RegisterType &type;
    const int stationNo;
    int i;      ///< position of the address in the request, from 0
    int index;  ///< of the unit in driver.cache.dataAreaList

    /** The address number. */
    int address() const { return addrPlus(m_startAddr, i); }

    /** WordBitUnit: the bit in the word, 0 to 15. */
    int bit() const { return bitInWord(address()); }

    /** The data area. Ask again after every report: the list may have grown meanwhile. */
    _DATA_ &area() const { return driver.cache.dataAreaList[index]; }
    const _DATA_ &constArea() const { return driver.cache.dataAreaList.at(index); }

    /** False when the host has emptied the cache from inside a report: area() is gone then. */
    bool stands() const { return m_cacheNo == driver.cache.number; }

private:
    const int m_startAddr;
    const int m_count;
    const quint32 m_cacheNo;
    AreaLookup m_lookup;
};

#endif
