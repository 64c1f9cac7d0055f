// Exports: what the host wants read, all the time or once.
#include "../data_area.h"
#include "../read_plan.h"
#include "../request_queue.h"

int intf_addrMerge(const QList<KEY_ADDRESS> &keys)
{
    clearMarks();
    QVector<AddressSpan> spans;
    spans.reserve(keys.size());
    for (int i = 0; i < keys.size(); ++i) {
        const KEY_ADDRESS &key = keys.at(i);
        const RegisterType type = registerType(key.regName);
        const int count = coveredCount(key.count);
        _setDataAreaMonitorFlag(key.stationNo, type, key.startAddr, count);
        if (type.isKnown() && count >= 1) {
            const AddressSpan span = {key.stationNo, type.number, key.startAddr, count, 0, 0};
            spans.append(span);
        }
    }

    driver.loop.readList.clear();
    driver.loop.readIndex = 0;
    const QVector<AddressSpan> blocks = addrMerge(spans, MonitorMode);
    for (int i = 0; i < blocks.size(); ++i) {
        const RegisterType &type = driver.registerTypes.at(blocks.at(i).regNumber);
        groupingKey(blocks.at(i), unitsPerRead(type, CyclicRead),
                    [](const AddressSpan &item, int) { driver.loop.readList.append(item); });
    }
    return int(driver.loop.readList.size());
}

int intf_addConditionRead(const KEY_ADDRESS &key, int kind)
{
    const RegisterType type = registerType(key.regName);
    if (!type.isKnown())
        return 1;
    const int blockLimit =
        key.bitMark == -1 ? driver.settings.mergeBits : driver.settings.mergeWords;
    const AddressSpan span = {key.stationNo,           type.number, key.startAddr,
                              coveredCount(key.count), 0,           0};
    VARIABLE item;
    item.kind = kind;
    groupingKey(span, qMin(blockLimit, unitsPerRead(type, ConditionRead)),
                [&item](const AddressSpan &piece, int) {
                    setRange(item, readAs(piece, ConditionRead));
                    enqueueRequest(driver.loop.condReadList, item);
                    driver.loop.lastCondVar = item;
                });
    return 1;
}
