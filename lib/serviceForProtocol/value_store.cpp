// Values entering the cache from either side, and the reports of what changed.
//
// Reports run the host's code: afterwards a data area is looked at only if unit.stands(), and
// through unit.area() again. A value comes into the cache after its report, so that a host that
// reads back from inside the call sees the one from before.
#include "value_store.h"

#include <QtCore/QMutexLocker>

namespace {

int wordOf(const unsigned char *value)
{
    return uchar2int16(value[0], value[1]);
}

void setWord(unsigned char *value, int word)
{
    value[0] = static_cast<unsigned char>(word);
    value[1] = static_cast<unsigned char>(word >> 8);
}

void reportPoint(const Unit &unit, const QString &regName, int address)
{
    notifyHost(driver.propItem0, unit.stationNo, regName, address);
}

/** Counts the queued writes of exactly this range, the one in service included. */
int queuedWritesOf(int stationNo, const RegisterType &type, int startAddr, int count)
{
    QMutexLocker locker(&driver.mutex);
    int found = 0;
    for (int i = 0; i < driver.writeList.size(); ++i) {
        const VARIABLE &item = driver.writeList.at(i);
        if (item.startAddr == startAddr && item.count == count && item.stationNo == stationNo &&
            sameText(item.regName, REG_LIST[type.number]))
            ++found;
    }
    return found;
}

void writeWord(const Unit &unit, const unsigned char *bytes)
{
    const int oldWord = wordOf(unit.area().currentValue());
    const int newWord = wordOf(bytes);
    if (oldWord != newWord)
        _wordDataChange(&oldWord, &newWord, unit);
    if (!unit.stands())
        return;
    _DATA_ &area = unit.area();
    setWord(area.writeValue, newWord);
    area.hasWriteValue = 1;
}

void writeBitOfWord(const Unit &unit, bool set)
{
    const int oldWord = wordOf(unit.area().currentValue());
    const int newWord = _setBitValue(oldWord, unit.bit(), set);
    if (oldWord != newWord)
        _wordDataChange(&oldWord, &newWord, unit);
    if (!unit.stands())
        return;
    // From the value as it stands now: the host may have written a neighbouring bit meanwhile.
    _DATA_ &area = unit.area();
    setWord(area.writeValue, _setBitValue(wordOf(area.currentValue()), unit.bit(), set));
    area.hasWriteValue = 1;
}

void writeBit(const Unit &unit, unsigned char value)
{
    if (unit.area().currentValue()[0] != value)
        reportPoint(unit, unit.type.areaName, unit.address());
    if (!unit.stands())
        return;
    _DATA_ &area = unit.area();
    area.writeValue[0] = value;
    area.hasWriteValue = 1;
}

void storeChangedWord(const Unit &unit, int word)
{
    _DATA_ &area = unit.area();
    const int oldWord = wordOf(area.readValue);
    if (area.writeBitMask == 0 || driver.writeList.isEmpty())
        area.hasWriteValue = 0;
    _wordDataChange(&oldWord, &word, unit);
    if (unit.stands())
        setWord(unit.area().readValue, word);
}

void storeChangedBit(const Unit &unit, int value)
{
    unit.area().hasWriteValue = 0;
    _bitDataChange(unit);
    if (unit.stands())
        unit.area().readValue[0] = static_cast<unsigned char>(value);
}

void settleWord(const Unit &unit, bool acknowledged)
{
    _DATA_ &area = unit.area();
    area.hasWriteValue = 0;
    const int written = wordOf(area.writeValue);
    const int read = wordOf(area.readValue);
    if (acknowledged)
        setWord(area.readValue, written);
    else
        _wordDataChange(&written, &read, unit);
}

void settleBitOfWord(const Unit &unit, bool acknowledged)
{
    _DATA_ &area = unit.area();
    const quint32 firstMark = quint32(1) << 2 * unit.bit();
    const quint32 secondMark = firstMark << 1;
    area.writeBitMask &= area.writeBitMask & firstMark ? ~firstMark : ~secondMark;
    if (area.writeBitMask == 0)
        area.hasWriteValue = 0;
    const bool written = wordOf(area.writeValue) >> unit.bit() & 1;
    if (acknowledged)
        setWord(area.readValue, _setBitValue(wordOf(area.readValue), unit.bit(), written));
    if (!area.hasWriteValue)
        _wordDataChange(0, 0, unit);
}

void settleBit(const Unit &unit, bool acknowledged)
{
    _DATA_ &area = unit.area();
    area.hasWriteValue = 0;
    if (acknowledged)
        area.readValue[0] = area.writeValue[0];
    else
        reportPoint(unit, unit.type.areaName, unit.address());
}

}  // namespace

void _wordDataChange(const int *oldValue, const int *newValue, const Unit &unit)
{
    const quint32 changed = oldValue && newValue ? quint32(*oldValue ^ *newValue) : 0xFFFF;
    const RegisterType &words = driver.registerTypes.at(unit.type.wordType);
    const int unitAddr = unit.constArea().unitAddr;
    // Every report may empty the cache or change the marks, so both are looked at again.
    for (int bit = 0; unit.stands() && unit.constArea().bitMonitorMask & changed >> bit << bit;
         ++bit) {
        if (unit.constArea().bitMonitorMask & changed & quint32(1) << bit)
            reportPoint(unit, REG_LIST[words.bitType], bitAddress(unitAddr, bit));
    }
    if (unit.stands() && unit.constArea().monitorFlags & 1)
        reportPoint(unit, REG_LIST[words.number], unitAddr);
}

void _bitDataChange(const Unit &unit)
{
    if (unit.constArea().monitorFlags & 1)
        reportPoint(unit, unit.type.areaName, unit.address());
}

void write_saveDataToArea(int stationNo, const RegisterType &type, int startAddr, int count,
                          const unsigned char *values)
{
    int identicalWrites = -1;  // counted once, when a bit turns out to be outstanding already
    for (Unit unit(stationNo, type, startAddr, count); unit.next();) {
        if (type.unitKind == WordUnit)
            writeWord(unit, values + 2 * qptrdiff(unit.i));
        else if (type.unitKind == BitUnit)
            writeBit(unit, values[unit.i]);
        else
            writeBitOfWord(unit, values[unit.i] == 1);
        if (type.unitKind != WordBitUnit || !unit.stands())
            continue;
        const quint32 firstMark = quint32(1) << 2 * unit.bit();
        if (unit.area().writeBitMask & firstMark) {
            // Two in the queue: the earlier one is in service, so two completions will arrive.
            if (identicalWrites < 0)
                identicalWrites = queuedWritesOf(stationNo, type, startAddr, count);
            if (identicalWrites == 2)
                unit.area().writeBitMask |= firstMark << 1;
        }
        unit.area().writeBitMask |= firstMark;
    }
}

void storeReadValues(int stationNo, const RegisterType &type, int startAddr, int count,
                     const quint16 *values)
{
    // A host that finishes this frame itself, from inside a report, has newer values.
    const quint32 exchange = driver.exchangeNo;
    for (Unit unit(stationNo, type, startAddr, count);
         exchange == driver.exchangeNo && unit.nextUnlike(values);) {
        if (type.unitKind == BitUnit)
            storeChangedBit(unit, values[unit.i]);
        else
            storeChangedWord(unit, values[unit.i]);
    }
}

void _write_FailOrSuc(int stationNo, const RegisterType &type, int startAddr, int count, int result)
{
    const bool acknowledged = result == 1;
    for (Unit unit(stationNo, type, startAddr, count); unit.next();) {
        if (type.unitKind == WordUnit)
            settleWord(unit, acknowledged);
        else if (type.unitKind == WordBitUnit)
            settleBitOfWord(unit, acknowledged);
        else
            settleBit(unit, acknowledged);
    }
}
