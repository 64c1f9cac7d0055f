// Blocking transfers that notice a lost device.
#include "host/line/device_line.h"

#include "host/output/interrupt.h"

#include <QtCore/QDeadlineTimer>

#include <algorithm>
#include <thread>

#include <sys/ioctl.h>

namespace host {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds SendPatience(1000);  // beyond the time that the bytes take on the wire
constexpr milliseconds LongestWait(100);    // then Ctrl-C is looked for
constexpr qint64 MostAtATime = 4096;        // of a peer that never falls silent

}  // namespace

bool DeviceLine::open()
{
    closeDevice();
    m_errorText.clear();
    if (openDevice())
        return true;
    m_errorText = deviceError();
    closeDevice();
    return false;
}

LineTime DeviceLine::now() const
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

void DeviceLine::pause(LineTime duration)
{
    std::this_thread::sleep_for(duration);
}

bool DeviceLine::send(const QByteArray &bytes)
{
    if (!isOpen())
        return false;
    const QDeadlineTimer deadline(std::chrono::ceil<milliseconds>(wireTime(int(bytes.size()))) +
                                  SendPatience);
    bool taken = m_device.write(bytes) == bytes.size();
    while (taken && m_device.bytesToWrite() > 0 && !interrupted()) {
        const qint64 left = deadline.remainingTime();
        taken = m_device.waitForBytesWritten(int(std::min<qint64>(left, LongestWait.count()))) ||
                (timedOut() && left > 0);
    }
    if (!taken)
        lose();
    return taken;
}

QByteArray DeviceLine::receive(LineTime until)
{
    while (isOpen() && m_device.bytesAvailable() == 0 && !interrupted()) {
        const LineTime left = std::clamp(until - now(), LineTime(0), LineTime(LongestWait));
        if (m_device.waitForReadyRead(int(std::chrono::ceil<milliseconds>(left).count())))
            continue;
        if (!timedOut())
            lose();
        else if (now() >= until)
            break;
    }
    return isOpen() ? m_device.read(MostAtATime) : QByteArray();
}

int DeviceLine::look()
{
    int beneath = 0;
    if (!isOpen() || ::ioctl(descriptor(), FIONREAD, &beneath) != 0)
        beneath = 0;
    return int(m_device.bytesAvailable()) + beneath;
}

LineTime DeviceLine::wireTime(int bytes) const
{
    return m_pace.none ? LineTime(0) : m_pace.settings.wireTime(bytes);
}

void DeviceLine::lose()
{
    m_errorText = deviceError();
    closeDevice();
}

}  // namespace host
