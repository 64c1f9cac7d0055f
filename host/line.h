// A byte line to one controller. Everything above it works alike over any kind of line.
#ifndef TOLVANE_HOST_LINE_H
#define TOLVANE_HOST_LINE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <chrono>

namespace host {

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

    /** Takes everything that has arrived so far off the line, without waiting. */
    virtual QByteArray discard() = 0;

    /** Sends all the bytes. Returns false when the line takes no more or is gone. */
    virtual bool send(const QByteArray &bytes) = 0;

    /**
     * Waits until so many bytes have arrived and takes them off the line; what arrived behind them
     * stays. Returns fewer when the time is up or the line is gone.
     */
    virtual QByteArray collect(int bytes, std::chrono::milliseconds timeout) = 0;

    /** How long so many bytes travel at the line's speed; 0 where the speed is not known. */
    virtual std::chrono::microseconds wireTime(int bytes) const = 0;
};

}  // namespace host

#endif
