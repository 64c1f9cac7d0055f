// Values entering the cache from either side, and the reports of what changed.
//
// Reports run the host's code: afterwards a data area is looked at only if unit.stands(), and
// through unit.area() again. A stored value comes after its report, so that a host that reads
// back from inside the call sees the value from before.
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

void reportPoint(int stationNo, const QString &regName, int address)
{
    notifyHost(driver.propItem0, stationNo, regName, address);
}

/** The word type whose data areas have this name, or null. */
const RegisterType *wordTypeOfArea(const QString &areaName)
{
    for (int number = 0; number < RegisterTypeCount; ++number) {
        const RegisterType &type = driver.registerTypes.at(number);
        if (type.unitKind == WordUnit && sameText(type.areaName, areaName))
            return &type;
    }
    return 0;
}

/** Counts the queued writes of exactly this range, the one in service included. */
int queuedWritesOf(int stationNo, const QString &regName, int startAddr, int count)
{
    QMutexLocker locker(&driver.mutex);
    int found = 0;
    for (int i = 0; i < driver.writeList.size(); ++i) {
        const VARIABLE &item = driver.writeList.at(i);
        if (item.startAddr == startAddr && item.count == count && item.stationNo == stationNo &&
            item.regName == regName)
            ++found;
    }
    return found;
}

void writeWord(const Unit &unit, const unsigned char *bytes)
{
    const int oldWord = wordOf(unit.area().currentValue());
    const int newWord = wordOf(bytes);
    if (oldWord != newWord)
        _wordDataChange(&oldWord, &newWord, unit.index, 0);
    if (!unit.stands())
        return;
    _DATA_ &area = unit.area();
    setWord(area.writeValue, newWord);
    area.hasWriteValue = 1;
}

void writeBitOfWord(const Unit &unit, bool set)
{
    const int oldWord = wordOf(unit.area().currentValue());
    const int newWord = _setBitValue(oldWord, unit.bit, set);
    if (oldWord != newWord)
        _wordDataChange(&oldWord, &newWord, unit.index, 0);
    if (!unit.stands())
        return;
    // From the value as it stands now: the host may have written a neighbouring bit meanwhile.
    _DATA_ &area = unit.area();
    setWord(area.writeValue, _setBitValue(wordOf(area.currentValue()), unit.bit, set));
    area.hasWriteValue = 1;
}

void writeBit(const Unit &unit, const QString &regName, unsigned char value)
{
    if (unit.area().currentValue()[0] != value)
        reportPoint(unit.stationNo, regName, unit.address);
    if (!unit.stands())
        return;
    _DATA_ &area = unit.area();
    area.writeValue[0] = value;
    area.hasWriteValue = 1;
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
        _wordDataChange(&written, &read, unit.index, 0);
}

void settleBitOfWord(const Unit &unit, bool acknowledged)
{
    _DATA_ &area = unit.area();
    const quint32 firstMark = quint32(1) << 2 * unit.bit;
    const quint32 secondMark = firstMark << 1;
    area.writeBitMask &= area.writeBitMask & firstMark ? ~firstMark : ~secondMark;
    if (area.writeBitMask == 0)
        area.hasWriteValue = 0;
    const bool written = wordOf(area.writeValue) >> unit.bit & 1;
    if (acknowledged)
        setWord(area.readValue, _setBitValue(wordOf(area.readValue), unit.bit, written));
    if (!area.hasWriteValue)
        _wordDataChange(0, 0, unit.index, 0);
}

void settleBit(const Unit &unit, const QString &regName, bool acknowledged)
{
    _DATA_ &area = unit.area();
    area.hasWriteValue = 0;
    if (acknowledged)
        area.readValue[0] = area.writeValue[0];
    else
        reportPoint(unit.stationNo, regName, unit.address);
}

}  // namespace

void _wordDataChange(const int *oldValue, const int *newValue, int index, int skipBits)
{
    const int changed = skipBits ? 0 : oldValue && newValue ? *oldValue ^ *newValue : 0xFFFF;
    const RegisterType *type = wordTypeOfArea(driver.dataAreaList.at(index).areaName);
    const quint32 cacheNo = driver.cacheNo;
    // Every report may empty the cache or change the marks, so both are looked at again.
    for (int bit = 0; type && bit < BitsPerWord && cacheNo == driver.cacheNo; ++bit) {
        const _DATA_ &area = driver.dataAreaList.at(index);
        if (area.bitMonitorMask & quint32(changed) & quint32(1) << bit && type->bitType >= 0)
            reportPoint(area.stationNo, REG_LIST[type->bitType], bitAddress(area.unitAddr, bit));
    }
    if (type && cacheNo == driver.cacheNo && driver.dataAreaList.at(index).monitorFlags & 1) {
        const _DATA_ &area = driver.dataAreaList.at(index);
        reportPoint(area.stationNo, REG_LIST[type->number], area.unitAddr);
    }
}

void _bitDataChange(int index)
{
    const _DATA_ &area = driver.dataAreaList.at(index);
    if (area.monitorFlags & 1)
        reportPoint(area.stationNo, area.areaName, area.unitAddr);
}

void write_saveDataToArea(int stationNo, const QString &regName, int startAddr, int count,
                          const unsigned char *values)
{
    int identicalWrites = -1;  // counted once, when a bit turns out to be outstanding already
    forEachUnit(stationNo, registerType(regName), startAddr, count, [&](const Unit &unit) {
        if (unit.kind == WordUnit)
            return writeWord(unit, values + 2 * qptrdiff(unit.i));
        if (unit.kind == BitUnit)
            return writeBit(unit, regName, values[unit.i]);

        writeBitOfWord(unit, values[unit.i] == 1);
        if (!unit.stands())
            return;
        const quint32 firstMark = quint32(1) << 2 * unit.bit;
        if (unit.area().writeBitMask & firstMark) {
            // Two in the queue: the earlier one is in service, so two completions will arrive.
            if (identicalWrites < 0)
                identicalWrites = queuedWritesOf(stationNo, regName, startAddr, count);
            if (identicalWrites == 2)
                unit.area().writeBitMask |= firstMark << 1;
        }
        unit.area().writeBitMask |= firstMark;
    });
}

void storeChangedWord(int index, int word)
{
    _DATA_ &area = driver.dataAreaList[index];
    const int oldWord = wordOf(area.readValue);
    if (area.writeBitMask == 0 || driver.writeList.isEmpty())
        area.hasWriteValue = 0;
    const quint32 cacheNo = driver.cacheNo;
    _wordDataChange(&oldWord, &word, index, 0);
    if (cacheNo == driver.cacheNo)
        setWord(driver.dataAreaList[index].readValue, word);
}

void storeChangedBit(int index, int value)
{
    driver.dataAreaList[index].hasWriteValue = 0;
    const quint32 cacheNo = driver.cacheNo;
    _bitDataChange(index);
    if (cacheNo == driver.cacheNo)
        driver.dataAreaList[index].readValue[0] = static_cast<unsigned char>(value);
}

void _write_FailOrSuc(int stationNo, const QString &regName, int startAddr, int count, int result)
{
    const bool acknowledged = result == 1;
    forEachUnit(stationNo, registerType(regName), startAddr, count, [&](const Unit &unit) {
        if (unit.kind == WordUnit)
            settleWord(unit, acknowledged);
        else if (unit.kind == WordBitUnit)
            settleBitOfWord(unit, acknowledged);
        else
            settleBit(unit, regName, acknowledged);
    });
}
