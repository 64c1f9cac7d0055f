// tolvane-host watch: addresses polled round and round, shown live or as a line per change.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/connection.h"
#include "host/failure.h"
#include "host/interrupt.h"
#include "host/watch/change_log.h"
#include "host/watch/line_use.h"
#include "host/watch/screen.h"

#include <QtCore/QTextStream>

#include <limits>
#include <optional>

namespace host {

namespace {

constexpr int DrawEveryMs = 250;
constexpr int RateEveryMs = 1000;  // a shorter stretch holds too few exchanges for a rate

double secondsOf(const QElapsedTimer &clock)
{
    return double(clock.nsecsElapsed()) * 1e-9;
}

/** The line's use over the last whole second, or over the first one so far. */
class LatelyUsed
{
public:
    LatelyUsed() { m_since.start(); }

    const LineUse &at(Connection &connection)
    {
        const bool whole = m_since.hasExpired(RateEveryMs);
        if (whole || m_use.seconds < 1)
            m_use =
                LineUse(connection.counters(), m_earlier, secondsOf(m_since), connection.line());
        if (whole) {
            m_earlier = connection.counters();
            m_since.start();
        }
        return m_use;
    }

private:
    QElapsedTimer m_since;
    LoopCounters m_earlier;
    LineUse m_use;
};

double secondsOption(const QCommandLineParser &parser, const QCommandLineOption &option)
{
    bool isNumber = false;
    const double seconds = parser.value(option).toDouble(&isNumber);
    if (!isNumber || !(seconds > 0))
        throw Failure(
            QStringLiteral("--for \"%1\": expected seconds above 0").arg(parser.value(option)),
            BadInput);
    return seconds;
}

/** Polls until the time is up or the user ends it. */
void poll(Connection &connection, WatchedValues &values, ChangeLog *log, bool live,
          double forSeconds)
{
    connection.observer = [&](const Exchange &exchange) {
        const QVector<int> changed = values.update(exchange);
        if (!log)
            return;
        for (const int value : changed)
            log->write(values.all()[value]);
        log->flush();
    };
    std::optional<Screen> screen;
    if (live)
        screen.emplace();

    LatelyUsed lately;
    QElapsedTimer clock;
    QElapsedTimer sinceDrawing;
    clock.start();
    sinceDrawing.start();
    while (!interrupted() && secondsOf(clock) < forSeconds) {
        connection.step();
        if (!screen || !sinceDrawing.hasExpired(DrawEveryMs))
            continue;
        sinceDrawing.start();
        values.sample();
        screen->draw(values.all(), connection.counters(), lately.at(connection));
    }
    const LineUse use(connection.counters(), LoopCounters(), secondsOf(clock), connection.line());
    screen.reset();
    QTextStream(stderr) << use.text();
}

}  // namespace

int watchCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        QStringLiteral("watch"),
        QStringLiteral("Polls addresses: a live table on a terminal (age: time since the value\n"
                       "changed), elsewhere a line per change. Ctrl-C ends it with the counts."));
    commandLine.addPositionalArgument(
        QStringLiteral("addresses"),
        QStringLiteral("Such as D_W:100x10, level=D_W:100:float, M_bit:20.5, or a tag file."),
        QStringLiteral("ADDRESS..."));
    addConnectionOptions(commandLine);
    const QCommandLineOption csv(
        QStringLiteral("csv"),
        QStringLiteral("Write time,name,address,value of each change to a file; - for stdout."),
        QStringLiteral("file"));
    const QCommandLineOption forSeconds(QStringLiteral("for"),
                                        QStringLiteral("End after so many seconds."),
                                        QStringLiteral("seconds"));
    commandLine.addOptions({csv, forSeconds});
    commandLine.read(arguments, std::numeric_limits<int>::max());
    const QStringList addresses = commandLine.positionalArguments().mid(1);
    if (addresses.isEmpty())
        throw Failure(QStringLiteral("nothing to watch; expected ADDRESS..."), BadInput);
    const double duration = commandLine.isSet(forSeconds) ? secondsOption(commandLine, forSeconds)
                                                          : std::numeric_limits<double>::infinity();

    Connection connection(commandLine);
    const QVector<Tag> tags =
        parseTags(connection.driver(), connection.identity(), addresses, connection.stationNo());
    std::optional<ChangeLog> log;
    if (commandLine.isSet(csv))
        log.emplace(commandLine.value(csv), ChangeLog::Csv);
    else if (!isTerminal())
        log.emplace(QStringLiteral("-"), ChangeLog::Columns);

    catchInterrupts();
    connection.open(Purpose::Reading);
    QVector<Point> points;
    for (const Tag &tag : tags)
        points.append(tag.point);
    connection.session().monitor(points);
    WatchedValues values(connection.driver(), connection.session(), tags);
    const bool live = isTerminal() && commandLine.value(csv) != QLatin1String("-");
    poll(connection, values, log ? &*log : nullptr, live, duration);
    return AllRight;
}

}  // namespace host
