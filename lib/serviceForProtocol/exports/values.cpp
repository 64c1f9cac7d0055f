// Exports: the host reads cached values and writes new ones.
#include "../read_plan.h"
#include "../request_queue.h"
#include "../value_store.h"

namespace {

void enqueueWrite(const AddressSpan &span, const unsigned char *values, int kind)
{
    const RegisterType &type = driver.registerTypes.at(span.regNumber);
    const bool words = type.unitKind == WordUnit;
    const size_t bytesPerElement = words ? 2 : 1;
    const int blockLimit = words ? driver.settings.mergeWords : driver.settings.mergeBits;
    VARIABLE item;
    item.kind = kind;
    groupingKey(span, qMin(blockLimit, unitsPerWrite(type)),
                [&](const AddressSpan &piece, int offset) {
                    setRange(item, piece);
                    std::memcpy(item.valueBuf, values + size_t(offset) * bytesPerElement,
                                size_t(piece.count) * bytesPerElement);
                    enqueueRequest(driver.loop.writeList, item);
                });
}

}  // namespace

int intf_getData(int stationNo, QString regName, int startAddr, int count, unsigned char *out)
{
    if (!out)
        return 1;
    const RegisterType type = registerType(regName);
    for (Unit unit(stationNo, type, startAddr, coveredCount(count)); unit.next();) {
        const int shown = unit.constArea().currentWord();
        if (type.unitKind == WordUnit)
            setWord(out + 2 * unit.i, shown);
        else if (type.unitKind == WordBitUnit)
            out[unit.i] = shown >> unit.bit() & 1;
        else
            out[unit.i] = static_cast<unsigned char>(shown);
    }
    return 1;
}

int intf_setData(int stationNo, QString regName, int startAddr, int count,
                 const unsigned char *values, int kind)
{
    if (!values)
        return 1;
    const RegisterType type = registerType(regName);
    const AddressSpan span = {stationNo, type.number, startAddr, coveredCount(count), 0, 0};
    if (driver.settings.propItem1 == 0 && type.isKnown())
        enqueueWrite(span, values, kind);
    // Behind the queueing: the store counts the queued copies of this write.
    write_saveDataToArea(stationNo, type, startAddr, span.count, values);
    return 1;
}
