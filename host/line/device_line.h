// What a serial port and a TCP connection have in common as lines: blocking transfers in real time.
#pragma once

#include "host/line/serial_settings.h"

#include <QtCore/QIODevice>

namespace host {

/** The pace that a line is said to have: its settings, or none at all. */
struct LinePace
{
    SerialSettings settings;
    bool none = false;  ///< nothing paces the bytes
};

/** Blocking use of a QIODevice on the calling thread; no event loop is needed. */
class DeviceLine : public Line
{
public:
    bool open() override;
    QString errorText() const override { return m_errorText; }
    LineTime now() const override;
    void pause(LineTime duration) override;
    bool send(const QByteArray &bytes) override;
    QByteArray receive(LineTime until) override;
    int look() override;
    LineTime wireTime(int bytes) const override;

protected:
    static constexpr int MostBuffered = 64 * 1024;  ///< by Qt, of a peer that never falls silent

    /** device: a member of the derived class; it may be constructed later. */
    DeviceLine(QIODevice &device, const LinePace &pace) : m_device(device), m_pace(pace) {}

    /** Returns false on failure. */
    virtual bool openDevice() = 0;
    virtual void closeDevice() = 0;

    /** Asked after a wait brought nothing: was that because of its time, and nothing else? */
    virtual bool timedOut() = 0;

    /** Why the device could not be opened or went away. */
    virtual QString deviceError() const = 0;

    virtual int descriptor() const = 0;

private:
    void lose();

    QIODevice &m_device;
    LinePace m_pace;
    QString m_errorText;
};

}  // namespace host
