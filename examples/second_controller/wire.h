// The frames of Modbus RTU, as both directions use them: function codes, fields, CRC, and how much
// fits one frame. 16-bit fields travel high byte first, the CRC low byte first.
#ifndef SECOND_CONTROLLER_WIRE_H
#define SECOND_CONTROLLER_WIRE_H

#include "tolvane_link/tolvane_link.h"

#pragma GCC visibility push(hidden)

enum FunctionCode {
    ReadCoils = 1,
    ReadRegisters = 3,
    WriteCoil = 5,
    WriteRegister = 6,
    WriteCoils = 15,
    WriteRegisters = 16,
    RefusedFlag = 0x80  ///< added to the function code that is refused
};

/** What the protocol allows a frame of 256 bytes. */
enum {
    MaxRegistersPerRead = 125,
    MaxRegistersPerWrite = 123,
    MaxCoilsPerRead = 2000,
    MaxCoilsPerWrite = 1968
};

enum {
    CrcBytes = 2,
    ReplyDataStart = 3,        ///< behind unit, function code and byte count
    AcknowledgementBytes = 8,  ///< the request's first six and the CRC
    RefusalBytes = 5           ///< unit, function code, exception code and the CRC
};

inline int bytesOfCoils(int coils)
{
    return (coils + 7) / 8;
}

/** The checksum of a frame; over a whole frame with its CRC it is 0. (reply.cpp) */
quint16 crc16(const unsigned char *bytes, int length);

/** Appends a request frame for an item and writes it in the order in which it travels. */
class FrameWriter
{
public:
    FrameWriter(const VARIABLE &item, FunctionCode function, int address) : frame(append(item))
    {
        byte(item.stationNo);
        byte(function);
        field16(address);
    }

    void byte(int value) { frame.frame[frame.sendLen++] = static_cast<unsigned char>(value); }
    void field16(int value)
    {
        byte(value >> 8);
        byte(value);
    }
    /** The CRC of everything, and how many bytes answer. */
    void close(int replyBytes)
    {
        const int crc = crc16(frame.frame, frame.sendLen);
        byte(crc);
        byte(crc >> 8);
        frame.replyLen = replyBytes;
    }

    FRAME_PRO &frame;  ///< stays in place until the next one is appended

private:
    static FRAME_PRO &append(const VARIABLE &item)
    {
        driver.loop.frameList.append(FRAME_PRO());
        driver.loop.frameList.last().var = item;
        return driver.loop.frameList.last();
    }
};

#pragma GCC visibility pop

#endif
