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
constexpr LineTime BundleEvery = std::chrono::milliseconds(16);
constexpr LineTime NetworkTakes = std::chrono::milliseconds(20);
constexpr unsigned StandstillWithin = 30;  // calls behind a request: into the next exchange
constexpr LineTime Never = LineTime::max();

VirtualSettings withPieces(VirtualSettings settings)
{
    settings.line.pieceBytes = settings.delivery == Delivery::Fifo ? 16 : 1;
    return settings;
}

}  // namespace

VirtualLine::VirtualLine(const VirtualSettings &settings)
    : m_settings(withPieces(settings)),
      m_controller(m_memory),
      m_faults(m_settings.faults, m_settings.seed),
      m_pacing(m_controller, m_faults, m_settings.line),
      m_random(m_settings.seed)
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
    standStill();
    m_now += duration;
    comeLate();
}

bool VirtualLine::send(const QByteArray &bytes)
{
    standStill();
    comeLate();
    if (!m_isOpen)
        return false;
    if (int(m_random() % Million) < m_settings.lostRequests)
        ++m_requestsLost;
    else if (m_suspended)
        m_waiting += bytes;
    else
        m_requests.emplace_back(
            m_now + (m_settings.delivery == Delivery::Network ? NetworkTakes : LineTime(0)), bytes);
    if (int(m_random() % Million) < m_settings.standstills)
        m_standstillIn = int(m_random() % StandstillWithin);
    pass();
    standStill();
    return true;
}

QByteArray VirtualLine::receive(LineTime until)
{
    standStill();
    pass();
    while (m_isOpen && m_device.isEmpty() && m_now < until) {
        m_now = std::min(nextEvent(), until);
        pass();
    }
    comeLate();
    return m_isOpen ? std::exchange(m_device, QByteArray()) : QByteArray();
}

int VirtualLine::look()
{
    standStill();
    pass();
    return int(m_device.size());
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
    m_settings.standstills = 0;
}

void VirtualLine::resume()
{
    m_suspended = false;
    if (!m_waiting.isEmpty())
        m_requests.emplace_back(m_now, std::exchange(m_waiting, QByteArray()));
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
    pass();
}

void VirtualLine::standStill()
{
    if (m_standstillIn >= 0 && m_standstillIn-- == 0)
        m_now += LineTime(qint64(m_random()) % m_settings.longestStandstill.count());
}

// Does all that is due by now, in its order.
void VirtualLine::pass()
{
    for (LineTime at = nextEvent(); at <= m_now; at = nextEvent()) {
        if (!m_replies.empty() && m_replies.front().first == at) {
            m_device += m_replies.front().second;
            m_replies.pop_front();
        } else if (!m_requests.empty() && m_requests.front().first == at) {
            controllerReceives(m_requests.front().second, at);
            m_requests.pop_front();
        } else {
            const QByteArray bytes = m_pacing.transmit(at.count());
            if (!bytes.isEmpty())
                m_replies.emplace_back(delivered(at), bytes);
        }
    }
}

LineTime VirtualLine::nextEvent() const
{
    const auto first = [](const Travelling &what) {
        return what.empty() ? Never : what.front().first;
    };
    const qint64 leaving = m_pacing.nextNs();
    return std::min({first(m_replies), first(m_requests), leaving < 0 ? Never : LineTime(leaving)});
}

void VirtualLine::controllerReceives(const QByteArray &bytes, LineTime at)
{
    if (m_settings.moving)
        plc::move(m_memory, at.count() / NsPerMs);
    m_pacing.receive(bytes, at.count());
}

LineTime VirtualLine::delivered(LineTime at) const
{
    if (m_settings.delivery == Delivery::Network)
        return at + NetworkTakes;
    return m_settings.delivery == Delivery::Bundles
               ? (at + BundleEvery - LineTime(1)) / BundleEvery * BundleEvery
               : at;
}

}  // namespace host
