// Opens what the command line names, and keeps it open.
#include "host/connection.h"

#include "host/failure.h"
#include "host/neighbours.h"
#include "host/tcp_line.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>
#include <QtCore/QThread>

namespace host {

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr int LongestTimeoutMs = 60000;
constexpr int MostRetries = 100;
constexpr int LongestBlock = 127;  // words that a frame carries
constexpr int HighestStation = 255;
constexpr int HighestBaud = 10000000;

constexpr unsigned long IdlePauseMs = 5;
constexpr unsigned long OpenAgainPauseMs = 200;
constexpr seconds LostLinePatience(10);

QString optionName(const char *name)
{
    return QLatin1String(name);
}

void say(const QString &text)
{
    QTextStream(stderr) << "tolvane-host: " << text << '\n';
}

// A pseudo-terminal carries bytes at once, whatever its settings say.
bool isPseudoTerminal(const QString &device)
{
    return QFileInfo(device).canonicalFilePath().startsWith(QLatin1String("/dev/pts/"));
}

}  // namespace

void addConnectionOptions(QCommandLineParser &parser)
{
    const auto add = [&](const char *name, const char *help, const char *value = nullptr,
                         const char *preset = nullptr) {
        parser.addOption(QCommandLineOption(QLatin1String(name), QLatin1String(help),
                                            QLatin1String(value), QLatin1String(preset)));
    };
    add("port", "The serial port, or pseudo-terminal, that leads to the controller.", "device");
    add("tcp", "The serial device server that leads to the controller.", "host:port");
    add("simulate", "Start a simulated controller (the default when no line is named).");
    add("serial", "Settings of the serial line (default: the driver's own).", "115200,8,NONE,1");
    add("baud",
        "Pace of a simulated controller, 0 for none (default: the line's with --simulate, none on "
        "a pseudo-terminal).",
        "rate");
    add("station", "Station number that the values are kept under.", "number", "1");
    add("retries", "Times that a request is sent before it is given up.", "number", "3");
    add("block-limit", "Words that one request may span, 1 to 127.", "words", "64");
    add("timeout", "How long the controller may think, in milliseconds.", "ms", "500");
    add("trace", "Write every frame to a file, with its time and what it says.", "file");
}

int numberOption(const QCommandLineParser &parser, const QString &name, int lowest, int highest)
{
    bool isNumber = false;
    const int number = parser.value(name).toInt(&isNumber);
    if (!isNumber || number < lowest || number > highest)
        throw Failure(QStringLiteral("--%1 \"%2\": expected a number from %3 to %4")
                          .arg(name, parser.value(name))
                          .arg(lowest)
                          .arg(highest),
                      BadInput);
    return number;
}

Connection::Connection(const QCommandLineParser &parser)
    : m_device(parser.value(optionName("port"))),
      m_server(parser.value(optionName("tcp"))),
      m_simulationAsked(parser.isSet(optionName("simulate")))
{
    if (int(parser.isSet(optionName("port"))) + int(parser.isSet(optionName("tcp"))) +
            int(m_simulationAsked) >
        1)
        throw Failure(QStringLiteral("more than one line; expected --port, --tcp or --simulate"),
                      BadInput);

    const QString driver = optionName("driver");
    m_driver = loadDriver(parser.isSet(driver) ? parser.value(driver) : findDriver());
    m_identity = identify(m_driver);

    const QString serial = optionName("serial");
    m_serial =
        SerialSettings::parse(parser.isSet(serial) ? parser.value(serial) : m_identity.serialLine);
    const QString baud = optionName("baud");
    if (parser.isSet(baud))
        m_simulatedBaud = numberOption(parser, baud, 0, HighestBaud);
    else if (m_device.isEmpty())
        m_simulatedBaud = m_serial.baudRate;
    m_stationNo = numberOption(parser, optionName("station"), 0, HighestStation);
    m_loopSettings.replyTimeout =
        milliseconds(numberOption(parser, optionName("timeout"), 1, LongestTimeoutMs));
    SessionSettings settings;
    settings.retryLimit = numberOption(parser, optionName("retries"), 1, MostRetries);
    settings.blockLimit = numberOption(parser, optionName("block-limit"), 1, LongestBlock);
    m_session = std::make_unique<Session>(m_driver, settings);
    if (parser.isSet(optionName("trace")))
        m_trace = std::make_unique<Trace>(parser.value(optionName("trace")));
}

Connection::~Connection() = default;

void Connection::open()
{
    makeLine();
    m_loop = std::make_unique<Loop>(m_driver, *m_line, m_loopSettings);
    m_loop->observer = [this](const Exchange &exchange) {
        if (m_trace)
            m_trace->write(exchange);
        if (exchange.outcome == Outcome::GivenUp)
            m_givenUp.append(exchange.errorText);
        if (observer)
            observer(exchange);
    };
    if (!m_line->open())
        throw Failure(QStringLiteral("cannot open %1: %2").arg(m_place, m_line->errorText()));
}

void Connection::makeLine()
{
    if (!m_server.isEmpty()) {
        m_place = m_server;
        m_line = std::make_unique<TcpLine>(m_server, m_serial);
        return;
    }
    if (m_device.isEmpty()) {
        m_controller = std::make_unique<ControllerProcess>(
            findController(),
            QStringList{QStringLiteral("--baud"), QString::number(m_simulatedBaud)});
        m_device = m_controller->device();
        say(QLatin1String(m_simulationAsked ? "" : "no line named: ") +
            QStringLiteral("talking to a simulated controller on %1").arg(m_device));
    }
    const bool hasPaceOfItsOwn = !isPseudoTerminal(m_device);
    m_loopSettings.paced = hasPaceOfItsOwn || m_simulatedBaud > 0;
    if (!hasPaceOfItsOwn && m_simulatedBaud > 0)
        m_serial.baudRate = m_simulatedBaud;
    m_place = m_device;
    m_line = std::make_unique<SerialLine>(m_device, m_serial);
}

Outcome Connection::step()
{
    if (!m_line->isOpen() && !openAgain())
        return Outcome::LineLost;
    const Outcome outcome = m_loop->exchange();
    if (outcome == Outcome::Idle)
        QThread::msleep(IdlePauseMs);
    return outcome;
}

bool Connection::openAgain()
{
    if (!m_lost)
        say(QStringLiteral("lost %1 (%2); trying again").arg(m_place, m_line->errorText()));
    m_lost = true;
    QThread::msleep(OpenAgainPauseMs);
    if (!m_line->open())
        return false;
    m_lost = false;
    say(QStringLiteral("%1 is back").arg(m_place));
    return true;
}

QStringList Connection::finish()
{
    m_givenUp.clear();
    QDeadlineTimer patience(LostLinePatience);
    // The driver pauses once after a run of writes, so only two pauses in a row are the end.
    for (int idle = 0; idle < 2;) {
        const Outcome outcome = step();
        idle = outcome == Outcome::Idle ? idle + 1 : 0;
        if (outcome != Outcome::LineLost)
            patience = QDeadlineTimer(LostLinePatience);
        else if (patience.hasExpired())
            throw Failure(QStringLiteral("%1 did not come back").arg(m_place));
    }
    return m_givenUp;
}

}  // namespace host
