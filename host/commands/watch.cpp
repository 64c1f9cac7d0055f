// tolvane-host watch: addresses polled round and round, shown live or written down.
#include "host/watch/watch.h"
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/output/interrupt.h"
#include "host/watch/line_use.h"
#include "host/watch/sinks/screen.h"
#include "host/watch/sinks/value_log.h"

#include <QtCore/QTextStream>

#include <optional>

namespace host {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds DrawEvery(250);
constexpr std::chrono::seconds RateEvery(1);  // a shorter stretch holds too few exchanges
constexpr int LongestIntervalMs = 24 * 60 * 60 * 1000;

double secondsOf(LineTime time)
{
    return std::chrono::duration<double>(time).count();
}

/** The line's use over the last whole second, or over the first one so far. */
class LatelyUsed
{
public:
    explicit LatelyUsed(LineTime now) : m_since(now) {}

    const LineUse &at(Connection &connection, LineTime now)
    {
        const bool whole = now - m_since >= RateEvery;
        if (whole || m_use.seconds < 1)
            m_use = LineUse(connection.counters(), m_earlier, secondsOf(now - m_since),
                            connection.line());
        if (whole) {
            m_earlier = connection.counters();
            m_since = now;
        }
        return m_use;
    }

private:
    LineTime m_since;
    LoopCounters m_earlier;
    LineUse m_use;
};

/** The options of the command, each as its own type. */
struct Wishes
{
    bool json = false;
    bool table = false;   // the live one
    bool tables = false;  // of statistics
    QString csv;
    LineTime duration = LineTime::max();
    WatchSettings watch;
};

LineTime durationOption(const QString &text)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds > 0) || seconds > 1e9)
        throw Failure(
            "--for %1: expected seconds, above 0 and up to 1000000000"_s.arg(quoted(text)),
            BadInput);
    return std::chrono::duration_cast<LineTime>(std::chrono::duration<double>(seconds));
}

LineTime intervalOption(const QCommandLineParser &parser, const char *name)
{
    return milliseconds(parser.isSet(QLatin1String(name))
                            ? numberOption(parser, QLatin1String(name), 1, LongestIntervalMs)
                            : 0);
}

Wishes readWishes(const QCommandLineParser &parser)
{
    const auto isSet = [&](const char *name) { return parser.isSet(QLatin1String(name)); };
    Wishes wishes;
    wishes.csv = parser.value("csv"_s);
    wishes.json = isSet("json");
    const bool csvToStdout = wishes.csv == "-"_s;
    if (wishes.json && csvToStdout)
        throw Failure("--json and --csv - both want standard output"_s, BadInput);
    wishes.table = isTerminal() && !wishes.json && !csvToStdout;
    wishes.tables = isSet("stats");
    if (isSet("for"))
        wishes.duration = durationOption(parser.value("for"_s));
    wishes.watch.poll = intervalOption(parser, "poll");
    wishes.watch.every = intervalOption(parser, "every");
    wishes.watch.setAside = !isSet("never-set-aside");
    return wishes;
}

std::vector<ValueLog> openLogs(const Wishes &wishes, Zone zone, const QVector<WatchedValue> &values)
{
    std::vector<ValueLog> logs;
    const ValueLog::Form csv =
        wishes.watch.every > LineTime(0) ? ValueLog::CsvTable : ValueLog::Csv;
    if (!wishes.csv.isEmpty())
        logs.emplace_back(wishes.csv, csv, zone, values);
    if (wishes.json)
        logs.emplace_back("-"_s, ValueLog::JsonLines, zone, values);
    else if (logs.empty() && !wishes.table)
        logs.emplace_back("-"_s, ValueLog::Columns, zone, values);
    return logs;
}

/** Polls until the time is up or the user ends it; returns how long that took. */
LineTime poll(Connection &connection, Watch &watch, LineTime duration,
              std::optional<Screen> &screen, std::vector<ValueLog> &logs)
{
    Line &line = connection.line();
    const LineTime start = line.now();
    LatelyUsed lately(start);
    LineTime nextDrawing = start;
    const auto goOn = [&] {
        const LineTime now = line.now();
        if (hungUp())
            for (ValueLog &log : logs)
                log.reopen();
        if (screen && now >= nextDrawing) {
            nextDrawing = now + DrawEvery;
            watch.values().sample();
            screen->draw(watch.values().all(), connection.counters(), lately.at(connection, now),
                         now);
        }
        return !interrupted();
    };
    connection.observer = [&](const Exchange &exchange) { watch.take(exchange, line.now()); };
    watch.run(
        line, [&] { return connection.step(); }, duration, goOn);
    connection.observer = nullptr;
    return line.now() - start;
}

/** What came of it all, on standard error; returns the exit status. */
int close(Connection &connection, const Watch &watch, const Wishes &wishes, LineTime duration,
          ValueLog *json)
{
    QTextStream err(stderr);
    const LineTime now = connection.line().now();
    err << LineUse(connection.counters(), LoopCounters(), secondsOf(duration), connection.line())
               .text();
    const QString failures = watch.statistics().all().failuresText();
    if (!failures.isEmpty())
        err << "failures: " << failures << '\n';
    if (wishes.tables && json)
        json->write({{"statistics"_s, watch.statistics().object(now)}});
    else if (wishes.tables)
        watch.statistics().print(err << '\n', now);
    err.flush();
    const QStringList notGood = watch.notGood();
    for (const QString &line : notGood)
        tell("no good value at the end; %1"_s.arg(line));
    return notGood.isEmpty() && !connection.traceFailed() ? AllRight : SomethingFailed;
}

}  // namespace

int watchCommand(const CommandLine &commandLine)
{
    Wishes wishes = readWishes(commandLine);

    Connection connection(commandLine);
    const QVector<Tag> tags =
        parseTags(connection.driver(), commandLine.given(), commandLine.tagFiles());
    wishes.watch.shortestCycle = connection.patience();
    wishes.watch.provable = connection.canProve();
    Watch watch(connection.driver(), connection.session(), tags, wishes.watch);
    std::vector<ValueLog> logs = openLogs(wishes, connection.zone(), watch.values().all());

    catchInterrupts();
    // Where a terminal is shown, the signal says that it has gone.
    if (!wishes.table && !(wishes.csv + commandLine.value("trace"_s)).isEmpty())
        catchHangUps();
    connection.open(Purpose::Reading);
    std::optional<Screen> screen;
    const auto timeOf = [&](LineTime at) {
        const auto ago = std::chrono::duration_cast<milliseconds>(connection.line().now() - at);
        return QDateTime::currentDateTimeUtc().addMSecs(-ago.count());
    };
    watch.report = [&](const QVector<WatchedValue> &values, LineTime at) {
        for (ValueLog &log : logs)
            log.write(values, timeOf(at));
    };
    watch.momentText = [&](LineTime at) { return timeText(timeOf(at), connection.zone()); };
    watch.wantedWords = [&] { return connection.wantedWords(); };
    connection.say = watch.say = [&](const QString &text) {
        if (screen)
            screen->makeRoom();
        tell(text);
    };
    if (wishes.table)
        screen.emplace();
    const LineTime duration = poll(connection, watch, wishes.duration, screen, logs);
    screen.reset();
    return close(connection, watch, wishes, duration, wishes.json ? &logs.back() : nullptr);
}

}  // namespace host
