// A byte line to one controller. Everything above it works alike over any kind of line, and in
// simulated time: the line tells the time, and lets it pass.
#pragma once

#include "plc/literals.h"

#include <QtCore/QByteArray>

#include <chrono>

namespace host {

/** Time since some moment before the line was made; it does not go back. */
using LineTime = std::chrono::nanoseconds;

class Line
{
public:
    virtual ~Line() = default;

    /** Opens the line, or opens it again. On failure returns false; errorText() says why. */
    virtual bool open() = 0;

    /** False before open() and as soon as the line is found to be gone (an unplugged adapter). */
    virtual bool isOpen() const = 0;

    /** Why the line could not be opened or was lost. */
    virtual QString errorText() const = 0;

    virtual LineTime now() const = 0;

    /** Lets so much time pass. */
    virtual void pause(LineTime duration) = 0;

    /** Sends all the bytes. Returns false when the line takes no more or is gone. */
    virtual bool send(const QByteArray &bytes) = 0;

    /**
     * Takes what has arrived off the line; when that is nothing, waits for it until then. Returns
     * nothing when the time is up or the line is gone. A time that has passed means not to wait.
     */
    virtual QByteArray receive(LineTime until) = 0;

    /** How many bytes have reached the device, or what is above it, and were not received yet. */
    virtual int look() = 0;

    /** How long so many bytes travel; 0 when nothing paces them. */
    virtual LineTime wireTime(int bytes) const = 0;
};

}  // namespace host
