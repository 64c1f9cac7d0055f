// Lets the time pass from one event of the simulated controller to the next.
#include "host/line/virtual_line.h"

#include "plc/motion.h"

#include <algorithm>

namespace host {

namespace {

constexpr int BitsPerByte = 10;
constexpr int Million = 1000000;
constexpr qint64 NsPerSecond = 1000 * 1000 * 1000;
constexpr qint64 NsPerMs = 1000 * 1000;

}  // namespace

VirtualLine::VirtualLine(const VirtualSettings &settings)
    : m_settings(settings),
      m_controller(m_memory),
      m_faults(settings.faults, settings.seed),
      m_pacing(m_controller, m_faults, settings.line),
      m_random(settings.seed)
{
}

bool VirtualLine::open()
{
    m_isOpen = m_pluggedIn;
    return m_isOpen;
}

QString VirtualLine::errorText() const
{
    return m_isOpen ? QString() : "the device has gone"_s;
}

void VirtualLine::pause(LineTime duration)
{
    m_now += duration;
    comeLate();
}

bool VirtualLine::send(const QByteArray &bytes)
{
    comeLate();
    if (!m_isOpen)
        return false;
    if (int(m_random() % Million) < m_settings.lostRequests) {
        ++m_requestsLost;
        return true;
    }
    if (m_suspended)
        m_waiting += bytes;
    else
        controllerReceives(bytes);
    return true;
}

QByteArray VirtualLine::receive(LineTime until)
{
    if (!m_isOpen)
        return QByteArray();
    QByteArray bytes = m_pacing.transmit(m_now.count());
    while (bytes.isEmpty() && m_now < until) {
        const qint64 next = m_pacing.nextNs();
        m_now = next < 0 ? until : std::clamp(LineTime(next), m_now, until);
        bytes = m_pacing.transmit(m_now.count());
    }
    comeLate();
    return bytes + m_pacing.transmit(m_now.count());
}

LineTime VirtualLine::wireTime(int bytes) const
{
    const int baud = m_settings.paceKnown ? m_settings.line.baud : 0;
    return LineTime(baud > 0 ? bytes * BitsPerByte * NsPerSecond / baud : 0);
}

void VirtualLine::heal()
{
    m_faults.heal();
    m_settings.lostRequests = 0;
}

void VirtualLine::resume()
{
    m_suspended = false;
    if (!m_waiting.isEmpty())
        controllerReceives(std::exchange(m_waiting, QByteArray()));
}

void VirtualLine::unplug()
{
    m_pluggedIn = false;
    m_isOpen = false;
}

void VirtualLine::comeLate()
{
    if (m_settings.jitter.count() > 0)
        m_now += LineTime(qint64(m_random()) % m_settings.jitter.count());
}

void VirtualLine::controllerReceives(const QByteArray &bytes)
{
    if (m_settings.moving)
        plc::move(m_memory, m_now.count() / NsPerMs);
    m_pacing.receive(bytes, m_now.count());
}

}  // namespace host
