// Exports: the host reads cached values and writes new ones.
#include "../read_plan.h"
#include "../request_queue.h"
#include "../value_store.h"

namespace {

void enqueueWrite(int stationNo, const RegisterType &type, int startAddr, int count,
                  const unsigned char *values, int kind)
{
    const bool words = type.unitKind == WordUnit;
    const int bytesPerElement = words ? 2 : 1;
    const int limit = words ? qMin<int>(driver.mergeWords, MaxWordsPerFrame)
                            : qMin<int>(driver.mergeBits, MaxBitsPerWrite);
    VARIABLE item;
    item.kind = kind;
    item.stationNo = stationNo;
    item.regName = REG_LIST[type.number];
    groupingKey(count, limit, [&](int offset, int length) {
        item.startAddr = addrPlus(startAddr, offset);
        item.count = length;
        std::memcpy(item.valueBuf, values + qptrdiff(offset) * bytesPerElement,
                    size_t(length) * size_t(bytesPerElement));
        enqueueRequest(driver.writeList, item);
    });
}

}  // namespace

int intf_getData(int stationNo, QString regName, int startAddr, int count, unsigned char *out)
{
    if (!out)
        return 1;
    forEachUnit(stationNo, registerType(regName), startAddr, count, [out](const Unit &unit) {
        const unsigned char *value = unit.constArea().currentValue();
        if (unit.kind == WordUnit) {
            out[2 * qptrdiff(unit.i)] = value[0];
            out[2 * qptrdiff(unit.i) + 1] = value[1];
        } else if (unit.kind == WordBitUnit) {
            out[unit.i] = uchar2int16(value[0], value[1]) >> unit.bit & 1;
        } else {
            out[unit.i] = value[0];
        }
    });
    return 1;
}

int intf_setData(int stationNo, QString regName, int startAddr, int count,
                 const unsigned char *values, int kind)
{
    if (!values)
        return 1;
    const RegisterType type = registerType(regName);
    if (driver.propItem1 == 0 && type.isKnown())
        enqueueWrite(stationNo, type, startAddr, count, values, kind);
    // Behind the queueing: the store counts the queued copies of this write.
    write_saveDataToArea(stationNo, regName, startAddr, count, values);
    return 1;
}
