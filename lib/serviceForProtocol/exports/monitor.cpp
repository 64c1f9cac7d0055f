// Exports: what the host wants read, all the time or once.
#include "../data_area.h"
#include "../read_plan.h"
#include "../request_queue.h"

namespace {

enum {
    /** A run of bits that starts in the middle of a word touches one word more. */
    MaxBitsPerRead = (MaxWordsPerFrame - 1) * BitsPerWord,
    /** A condition read asks for 16 words a contact. */
    MaxContactsPerConditionRead = MaxWordsPerFrame / BitsPerWord
};

int conditionReadLimit(UnitKind kind)
{
    switch (kind) {
        case WordBitUnit:
            return MaxBitsPerRead;
        case BitUnit:
            return MaxContactsPerConditionRead;
        default:
            return MaxWordsPerFrame;
    }
}

}  // namespace

int intf_addrMerge(const QList<KEY_ADDRESS> &keys)
{
    for (int i = 0; i < driver.dataAreaList.size(); ++i) {
        _DATA_ &area = driver.dataAreaList[i];
        area.writeBitMask = 0;
        area.monitorFlags = 0;
        area.bitMonitorMask = 0;
    }

    QVector<AddressSpan> spans;
    spans.reserve(keys.size());
    for (int i = 0; i < keys.size(); ++i) {
        const KEY_ADDRESS &key = keys.at(i);
        _setDataAreaMonitorFlag(key.stationNo, key.regName, key.startAddr, key.count);
        const int number = getIndexFromRegName(key.regName);
        if (number >= 0 && key.count >= 1) {
            const AddressSpan span = {key.stationNo, number, key.startAddr, key.count, 0};
            spans.append(span);
        }
    }
    addrMerge(spans, MonitorMode);

    driver.readList.clear();
    driver.readIndex = 0;
    for (int i = 0; i < spans.size(); ++i) {
        AddressSpan item = spans.at(i);
        groupingKey(item.count, MaxWordsPerFrame, [&](int offset, int length) {
            item.startAddr = addrPlus(spans.at(i).startAddr, offset);
            item.count = length;
            driver.readList.append(item);
        });
    }
    return int(driver.readList.size());
}

int intf_addConditionRead(const KEY_ADDRESS &key, int kind)
{
    const RegisterType type = registerType(key.regName);
    if (!type.isKnown())
        return 1;
    const int blockLimit = key.bitMark == -1 ? driver.mergeBits : driver.mergeWords;
    const int limit = qMin(blockLimit, conditionReadLimit(type.unitKind));
    groupingKey(key.count, limit, [&](int offset, int length) {
        AddressSpan piece = {key.stationNo, type.number, addrPlus(key.startAddr, offset), length,
                             0};
        if (type.unitKind == WordBitUnit)
            piece = wordSpan(piece);
        else if (type.unitKind == BitUnit)
            piece.count = length * BitsPerWord;
        VARIABLE item;
        item.kind = kind;
        item.stationNo = piece.stationNo;
        item.regName = REG_LIST[piece.regNumber];
        item.startAddr = piece.startAddr;
        item.count = piece.count;
        enqueueRequest(driver.condReadList, item);
        driver.lastCondVar = item;
    });
    return 1;
}
