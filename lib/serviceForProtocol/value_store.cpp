// Values entering the cache from either side, and the reports of what changed.
//
// Reports run the host's code: afterwards a data area is looked at only if unit.stands(), and
// through unit.area() again. A value comes into the cache after its report, so that a host that
// reads back from inside the call sees the one from before.
#include "value_store.h"

#include <QtCore/QMutexLocker>

namespace {

void reportPoint(const Unit &unit, const QString &regName, int address)
{
    notifyHost(driver.settings.propItem0, unit.stationNo, regName, address);
}

/** Counts the queued writes of exactly this range, the one in service included. */
int queuedWritesOf(int stationNo, const RegisterType &type, int startAddr, int count)
{
    QMutexLocker locker(&driver.loop.mutex);
    int found = 0;
    for (int i = 0; i < driver.loop.writeList.size(); ++i) {
        const VARIABLE &item = driver.loop.writeList.at(i);
        if (item.startAddr == startAddr && item.count == count && item.stationNo == stationNo &&
            sameText(item.regName, REG_LIST[type.number]))
            ++found;
    }
    return found;
}

/** Whether the bit has the first of its two marks. */
bool isBitWriteMarked(const _DATA_ &area, int bit)
{
    return area.writeBitMask >> 2 * bit & 1;
}

/** Marks one more write of the bit as outstanding; `isSecond`: its like is in service. */
void markBitWrite(_DATA_ &area, int bit, bool isSecond)
{
    area.writeBitMask |= quint32(isSecond ? 3 : 1) << 2 * bit;
}

/** Takes one of the bit's marks away: the first, or else the second. */
void unmarkBitWrite(_DATA_ &area, int bit)
{
    area.writeBitMask &= ~(quint32(isBitWriteMarked(area, bit) ? 1 : 2) << 2 * bit);
}

/** The i-th value of the host: a word, or the byte of a bit. */
int valueAt(const RegisterType &type, const unsigned char *values, int i)
{
    if (type.unitKind != WordUnit)
        return values[i];
    return uchar2int16(values[2 * i], values[2 * i + 1]);
}

/** What the unit shows once `value`, a word, or a bit of which 1 sets, is written to it. */
int shownWith(const Unit &unit, int value)
{
    if (unit.type.unitKind != WordBitUnit)
        return value;
    return _setBitValue(unit.constArea().currentWord(), unit.bit(), value == 1);
}

void reportBit(const Unit &unit)
{
    reportPoint(unit, unit.type.areaName, unit.address());
}

/** Of a word or of a bit of its own. */
void settleUnit(const Unit &unit, bool acknowledged)
{
    _DATA_ &area = unit.area();
    area.hasWriteValue = 0;
    if (acknowledged)
        setWord(area.readValue, area.writtenWord());
    else if (unit.type.unitKind == BitUnit)
        reportBit(unit);
    else
        _wordDataChange(area.writtenWord() ^ area.readWord(), unit);
}

void settleBitOfWord(const Unit &unit, bool acknowledged)
{
    _DATA_ &area = unit.area();
    unmarkBitWrite(area, unit.bit());
    if (area.writeBitMask == 0)
        area.hasWriteValue = 0;
    const bool written = area.writtenWord() >> unit.bit() & 1;
    if (acknowledged)
        setWord(area.readValue, _setBitValue(area.readWord(), unit.bit(), written));
    if (!area.hasWriteValue)
        _wordDataChange(AllBits, unit);
}

}  // namespace

void _wordDataChange(int changed, const Unit &unit)
{
    const RegisterType &words = driver.registerTypes.at(unit.type.wordType);
    const int unitAddr = unit.constArea().unitAddr;
    // Every report may empty the cache or change the marks, so both are looked at again.
    for (int bit = 0; bit < BitsPerWord && unit.stands() && unit.constArea().bitMonitorMask != 0;
         ++bit) {
        if (unit.constArea().bitMonitorMask >> bit & quint32(changed) >> bit & 1)
            reportPoint(unit, REG_LIST[words.bitType], bitAddress(unitAddr, bit));
    }
    if (unit.stands() && unit.constArea().monitorFlags & 1)
        reportPoint(unit, REG_LIST[words.number], unitAddr);
}

void _bitDataChange(const Unit &unit)
{
    if (unit.constArea().monitorFlags & 1)
        reportBit(unit);
}

void write_saveDataToArea(int stationNo, const RegisterType &type, int startAddr, int count,
                          const unsigned char *values)
{
    int identicalWrites = -1;  // counted once, when a bit turns out to be outstanding already
    for (Unit unit(stationNo, type, startAddr, count); unit.next();) {
        const int value = valueAt(type, values, unit.i);
        const int changed = unit.constArea().currentWord() ^ shownWith(unit, value);
        if (changed && type.unitKind == BitUnit)
            reportBit(unit);
        else if (changed)
            _wordDataChange(changed, unit);
        if (!unit.stands())
            return;
        // From what shows now: the host may have written a neighbouring bit meanwhile.
        setWord(unit.area().writeValue, shownWith(unit, value));
        unit.area().hasWriteValue = 1;
        if (type.unitKind != WordBitUnit)
            continue;
        const bool isMarked = isBitWriteMarked(unit.constArea(), unit.bit());
        if (isMarked && identicalWrites < 0)
            identicalWrites = queuedWritesOf(stationNo, type, startAddr, count);
        // Two in the queue: the earlier one is in service, so two completions will arrive.
        markBitWrite(unit.area(), unit.bit(), isMarked && identicalWrites == 2);
    }
}

void storeReadValues(int stationNo, const RegisterType &type, int startAddr, int count,
                     const quint16 *values)
{
    // A host that finishes this frame itself, from inside a report, has newer values.
    const ExchangeUnderWay exchange;
    for (Unit unit(stationNo, type, startAddr, count);
         exchange.stands() && unit.nextUnlike(values);) {
        _DATA_ &area = unit.area();
        if (area.writeBitMask == 0 || driver.loop.writeList.isEmpty())
            area.hasWriteValue = 0;
        if (type.unitKind == BitUnit)
            _bitDataChange(unit);
        else
            _wordDataChange(area.readWord() ^ values[unit.i], unit);
        if (unit.stands())
            setWord(unit.area().readValue, values[unit.i]);
    }
}

void _write_FailOrSuc(int stationNo, const RegisterType &type, int startAddr, int count, int result)
{
    const bool acknowledged = result == 1;
    for (Unit unit(stationNo, type, startAddr, count); unit.next();) {
        if (type.unitKind == WordBitUnit)
            settleBitOfWord(unit, acknowledged);
        else
            settleUnit(unit, acknowledged);
    }
}
