// Declares and reads the options of a connection.
#include "host/exchange/connection_options.h"

#include "host/output/failure.h"

namespace host {

using std::chrono::milliseconds;

namespace {

constexpr int LongestTimeMs = 60000;
constexpr int MostRetries = 100;
constexpr int LongestBlock = 127;  // words that a frame carries
constexpr int HighestStation = 255;

QString optionName(const char *name)
{
    return QLatin1String(name);
}

milliseconds timeOption(const QCommandLineParser &parser, const char *name, int lowest)
{
    return milliseconds(numberOption(parser, optionName(name), lowest, LongestTimeMs));
}

}  // namespace

int numberOption(const QCommandLineParser &parser, const QString &name, int lowest, int highest)
{
    bool isNumber = false;
    const int number = parser.value(name).toInt(&isNumber);
    if (!isNumber || number < lowest || number > highest)
        throw Failure(
            "--%1 %2: expected a number from %3 to %4"_s.arg(name, quoted(parser.value(name)))
                .arg(lowest)
                .arg(highest),
            BadInput);
    return number;
}

void addConnectionOptions(QCommandLineParser &parser, const QStringList &names)
{
    const auto add = [&](const char *name, const char *help, const char *value = nullptr,
                         const char *preset = nullptr) {
        const QStringList spellings = QString(QLatin1String(name)).split(QLatin1Char(','));
        if (names.isEmpty() || names.contains(spellings.first()))
            parser.addOption(QCommandLineOption(spellings, QLatin1String(help),
                                                QLatin1String(value), QLatin1String(preset)));
    };
    add("port", "The serial port, or pseudo-terminal, that leads to the controller.", "device");
    add("tcp", "The serial device server that leads to the controller.", "host:port");
    add("simulate", "Start a simulated controller, at the line's pace.");
    add("serial",
        "Settings of the serial line, also of the one behind a device server (default: the "
        "driver's own, such as 115200,8,NONE,1).",
        "settings");
    add("pace",
        "none: nothing paces the bytes, so a reply may come sooner than --serial lets it travel "
        "(default: line).",
        "line|none", "line");
    add("station", "Station number that the values are kept under (default: 1).", "number", "1");
    add("retries", "Times that a request is sent before it is given up (default: 3).", "number",
        "3");
    add("block-limit", "Words up to which tags are joined in one request, 1 to 127 (default: 64).",
        "words", "64");
    add("timeout", "How long the controller may think, in milliseconds (default: 500).", "ms",
        "500");
    add("grace,quiet",
        "How much later than the time-out a reply may still come: after a failure so much silence "
        "proves that none is coming (default: the time-out).",
        "ms");
    add("listen",
        "Listen so long before each request, for copies of replies on a line without a pace "
        "(default: 0).",
        "ms", "0");
    add("trace", "Write every frame to a file, with its time and what it says.", "file");
    add("local", "Write times as local ones with their offset, not as UTC.");
}

SerialSettings serialOption(const QCommandLineParser &parser, const Identity &identity)
{
    const QString serial = optionName("serial");
    return SerialSettings::parse(parser.isSet(serial) ? parser.value(serial) : identity.serialLine);
}

LinePace paceOptions(const QCommandLineParser &parser, const Identity &identity)
{
    const QString text = parser.value(optionName("pace"));
    if (text != "line"_s && text != "none"_s)
        throw Failure("--pace %1: expected line or none"_s.arg(quoted(text)), BadInput);
    return {serialOption(parser, identity), text == "none"_s};
}

int stationOption(const QCommandLineParser &parser)
{
    return numberOption(parser, optionName("station"), 0, HighestStation);
}

int blockLimitOption(const QCommandLineParser &parser)
{
    return numberOption(parser, optionName("block-limit"), 1, LongestBlock);
}

LoopSettings loopOptions(const QCommandLineParser &parser)
{
    LoopSettings loop;
    loop.replyTimeout = timeOption(parser, "timeout", 1);
    if (parser.isSet(optionName("grace")))
        loop.quietTime = timeOption(parser, "grace", 1);
    loop.listenFirst = timeOption(parser, "listen", 0);
    return loop;
}

ConnectionOptions::ConnectionOptions(const QCommandLineParser &parser, const Identity &identity)
    : device(parser.value(optionName("port"))),
      server(parser.value(optionName("tcp"))),
      simulationAsked(parser.isSet(optionName("simulate"))),
      trace(parser.value(optionName("trace"))),
      zone(parser.isSet(optionName("local")) ? Zone::Local : Zone::Utc)
{
    if (int(parser.isSet(optionName("port"))) + int(parser.isSet(optionName("tcp"))) +
            int(simulationAsked) >
        1)
        throw Failure("more than one line; expected --port, --tcp or --simulate"_s, BadInput);

    pace = paceOptions(parser, identity);
    session.retryLimit = numberOption(parser, optionName("retries"), 1, MostRetries);
    session.blockLimit = blockLimitOption(parser);
    loop = loopOptions(parser);
    loop.baud = pace.none ? 0 : pace.settings.baudRate;
}

}  // namespace host
