// Opens what the options name, and keeps it open.
#include "host/exchange/connection.h"

#include "host/driver/neighbours.h"
#include "host/line/serial_line.h"
#include "host/line/tcp_line.h"
#include "host/output/failure.h"

#include <utility>

#include <unistd.h>

namespace host {

using std::chrono::seconds;

namespace {

constexpr seconds LostLinePatience(10);

Driver driverOf(const QCommandLineParser &parser)
{
    const QString option = "driver"_s;
    return loadDriver(parser.isSet(option) ? parser.value(option) : findDriver());
}

}  // namespace

Connection::Connection(const QCommandLineParser &parser)
    : say(tell), m_driver(driverOf(parser)), m_options(parser, m_driver.identity)
{
    m_driver.stationNo = stationOption(parser);
    m_session = std::make_unique<Session>(m_driver, m_options.session);
    if (!m_options.trace.isEmpty())
        m_trace = std::make_unique<Trace>(m_options.trace, m_options.zone);
}

Connection::~Connection() = default;

void Connection::open(Purpose purpose)
{
    const bool isNamed =
        m_options.simulationAsked || !m_options.device.isEmpty() || !m_options.server.isEmpty();
    if (!isNamed && (purpose == Purpose::Writing || ::isatty(STDERR_FILENO) == 0))
        throw Failure("no line named; expected --port DEVICE, --tcp HOST:PORT or --simulate"_s,
                      BadInput);
    m_line = makeLine();
    m_loop = std::make_unique<Loop>(m_driver, *m_line, m_options.loop);
    m_loop->place = m_place;
    m_loop->say = [this](const QString &text) { say(text); };
    m_loop->observer = [this](const Exchange &exchange) {
        trace(exchange);
        m_proven = exchange.earlier.step == Step::Proven;
        m_outOfStep = m_outOfStep || exchange.earlier.step > Step::Proven;
        if (exchange.outcome == Outcome::GivenUp)
            m_givenUp.append(faultsText(exchange.tries));
        if (observer)
            observer(exchange);
    };
    if (!m_line->open())
        throw Failure("cannot open %1: %2"_s.arg(m_place, m_line->errorText()));
}

QString Connection::tryToOpen(Purpose purpose)
{
    if (m_line && m_line->isOpen())
        return QString();
    try {
        open(purpose);
    } catch (const Failure &failure) {
        if (failure.status() == BadInput)
            throw;
        return failure.text();
    }
    return QString();
}

// What is under way on the line matters more than its record.
void Connection::trace(const Exchange &exchange)
{
    try {
        if (m_trace)
            m_trace->write(exchange);
    } catch (const Failure &failure) {
        m_trace.reset();
        m_traceFailed = true;
        say("%1; the trace ends here"_s.arg(failure.text()));
    }
}

std::unique_ptr<Line> Connection::makeLine()
{
    m_place = m_options.server + m_options.device;
    if (!m_options.server.isEmpty())
        return std::make_unique<TcpLine>(m_options.server, m_options.pace);
    if (m_options.device.isEmpty()) {
        const int baud = m_options.pace.none ? 0 : m_options.pace.settings.baudRate;
        m_controller = std::make_unique<ControllerProcess>(
            findController(), QStringList{"--baud"_s, QString::number(baud)});
        m_place = m_controller->device();
        say(QLatin1String(m_options.simulationAsked ? "" : "no line named: ") +
            "talking to a simulated controller on %1"_s.arg(m_place));
    }
    return std::make_unique<SerialLine>(m_place, m_options.pace);
}

bool Connection::prove(const Point &near)
{
    constexpr int Attempts = 3;
    if (!canProve())
        return true;
    const auto notify = std::exchange(observer, nullptr);
    m_proven = false;
    for (int i = 0; i < Attempts && !m_proven; ++i) {
        m_session->readOnce(provingPart(near, m_loop->provingWords()));
        if (!finish().isEmpty())
            break;
    }
    observer = notify;
    return !std::exchange(m_outOfStep, false) && m_proven;
}

QStringList Connection::finish()
{
    m_givenUp.clear();
    LineTime deadline = m_line->now() + LostLinePatience;
    // The driver pauses once after a run of writes, so only two pauses in a row are the end.
    for (int idle = 0; idle < 2;) {
        const Outcome outcome = step();
        idle = outcome == Outcome::Idle ? idle + 1 : 0;
        if (outcome != Outcome::LineLost)
            deadline = m_line->now() + LostLinePatience;
        else if (m_line->now() >= deadline)
            throw Failure("%1 did not come back"_s.arg(m_place));
    }
    return m_givenUp;
}

}  // namespace host
