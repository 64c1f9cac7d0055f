// The request frames, each written as it travels.
#include "wire.h"

namespace {

/** Read: <unit> 01|03 <address> <count> <CRC>. */
void appendRead(const RegisterType &type, int address, int count, const VARIABLE &item)
{
    const FunctionCode function = FunctionCode(ADDRESS_RW_COMMAND[type.number].toInt());
    FrameWriter out(item, function, address);
    out.field16(count);
    const int dataBytes = function == ReadCoils ? bytesOfCoils(count) : 2 * count;
    out.close(ReplyDataStart + dataBytes + CrcBytes);
    out.frame.dataStart = ReplyDataStart;
    out.frame.readCount = count;
}

/**
 * Write one register: <unit> 06 <address> <value> <CRC>. Write several: <unit> 10 <address> <count>
 * <bytes> <values> <CRC>.
 */
void appendWriteRegisters(int address, int count, const quint16 *values, const VARIABLE &item)
{
    FrameWriter out(item, count == 1 ? WriteRegister : WriteRegisters, address);
    if (count > 1) {
        out.field16(count);
        out.byte(2 * count);
    }
    for (int i = 0; i < count; ++i)
        out.field16(values[i]);
    out.close(AcknowledgementBytes);
}

/** Write one coil: <unit> 05 <address> FF00|0000 <CRC>. */
void appendWriteCoil(const VARIABLE &item)
{
    FrameWriter out(item, WriteCoil, item.startAddr);
    out.field16(item.valueBuf[0] ? 0xFF00 : 0);
    out.close(AcknowledgementBytes);
}

/** Write several: <unit> 0F <address> <count> <bytes> <coils, the first one lowest> <CRC>. */
void appendWriteCoils(const VARIABLE &item)
{
    FrameWriter out(item, WriteCoils, item.startAddr);
    out.field16(item.count);
    out.byte(bytesOfCoils(item.count));
    for (int first = 0; first < item.count; first += 8) {
        int coils = 0;
        for (int i = first; i < qMin(first + 8, item.count); ++i)
            coils |= (item.valueBuf[i] != 0) << (i - first);
        out.byte(coils);
    }
    out.close(AcknowledgementBytes);
}

}  // namespace

void getReadFrame(const VARIABLE &item)
{
    appendRead(registerType(item.regName), item.startAddr, item.count, item);
}

void getWriteFrame(const VARIABLE &item)
{
    const RegisterType type = registerType(item.regName);
    switch (type.unitKind) {
        case WordUnit: {
            quint16 values[MaxRegistersPerWrite];
            for (int i = 0; i < item.count; ++i)
                values[i] = quint16(item.valueBuf[2 * i] | item.valueBuf[2 * i + 1] << 8);
            appendWriteRegisters(item.startAddr, item.count, values, item);
            break;
        }
        case WordBitUnit:  // even a single one: these codes write whole registers only
            appendRead(type, wordOfBit(item.startAddr), wordsOfBits(item.startAddr, item.count),
                       item);
            break;
        case BitUnit:
            if (item.count == 1)
                appendWriteCoil(item);
            else
                appendWriteCoils(item);
            break;
        case NoUnit:
            break;
    }
}

void appendMergedWrite(const QByteArray &reply, const RegisterType &type)
{
    const VARIABLE item = driver.loop.frameList.at(0).var;
    const int words = driver.loop.frameList.at(0).readCount;
    quint16 values[MaxRegistersPerRead];
    readReplyValues(reply, driver.loop.frameList.at(0), type, values);
    for (int i = 0; i < item.count; ++i) {
        const int position = bitInWord(item.startAddr) + i;
        const int bitMask = 1 << position % BitsPerWord;
        quint16 &word = values[position / BitsPerWord];
        word = quint16(item.valueBuf[i] ? word | bitMask : word & ~bitMask);
    }
    appendWriteRegisters(wordOfBit(item.startAddr), words, values, item);
}

void handShakeFrame()
{
    driver.loop.frameList.append(FRAME_PRO());
}
