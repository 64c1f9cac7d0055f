// tolvane-host watch: addresses polled round and round, shown live or written down.
#include "host/watch/watch.h"
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/exchange/connection.h"
#include "host/output/failure.h"
#include "host/output/interrupt.h"
#include "host/watch/line_use.h"
#include "host/watch/sinks/screen.h"
#include "host/watch/sinks/value_log.h"

#include <QtCore/QTextStream>

#include <limits>
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
        throw Failure("--for \"%1\": expected seconds, above 0 and up to 1000000000"_s.arg(text),
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
    wishes.watch.setAside = !isSet("no-demotion");
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
              std::optional<Screen> &screen)
{
    Line &line = connection.line();
    const LineTime start = line.now();
    LatelyUsed lately(start);
    LineTime nextDrawing = start;
    const auto draw = [&] {
        const LineTime now = line.now();
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
        line, [&] { return connection.step(); }, duration, draw);
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
    const QStringList notGood = watch.notGood();
    for (const QString &line : notGood)
        err << "tolvane-host: no good value at the end; " << line << '\n';
    return notGood.isEmpty() && !connection.traceFailed() ? AllRight : SomethingFailed;
}

}  // namespace

int watchCommand(const QStringList &arguments)
{
    CommandLine commandLine(
        "watch"_s,
        "Polls addresses: a live table on a terminal (changed, read: time since the value\n"
        "changed and since its last good read), elsewhere a line per change of value or\n"
        "quality. Ctrl-C ends it with the counts. Exit status 1 when a tag had no good value\n"
        "at the end."_s);
    commandLine.addPositionalArgument(
        "addresses"_s, "Such as D_W:100x10, level=D_W:100:float, M_bit:20.5, or a tag file."_s,
        "ADDRESS..."_s);
    commandLine.addTagFileOption();
    addConnectionOptions(commandLine);
    const auto add = [&](const char *name, const char *help, const char *value = nullptr) {
        commandLine.addOption(
            QCommandLineOption(QLatin1String(name), QLatin1String(help), QLatin1String(value)));
    };
    add("csv",
        "Write time,name,address,value,quality,reason of each change to a file, behind what is "
        "there; - for stdout.",
        "file");
    commandLine.addJsonOption("Print each change as a line of JSON.");
    add("every",
        "Write all values so often, changed or not; in CSV a column for each value and one for "
        "its quality.",
        "ms");
    add("poll", "Begin a poll cycle no sooner than so long after the one before.", "ms");
    add("for", "End after so many seconds.", "seconds");
    add("stats", "Print what became of the exchanges, by block and by tag, at the end.");
    add("no-demotion", "Poll blocks that are given up three times in a row as often as others.");
    commandLine.read(arguments, std::numeric_limits<int>::max());
    const QStringList addresses = commandLine.positionalArguments().mid(1);
    if (addresses.isEmpty() && commandLine.tagFiles().isEmpty())
        throw Failure("nothing to watch; expected ADDRESS... or --tags FILE"_s, BadInput);
    Wishes wishes = readWishes(commandLine);

    Connection connection(commandLine);
    const QVector<Tag> tags = parseTags(connection.driver(), connection.identity(), addresses,
                                        connection.stationNo(), commandLine.tagFiles());
    wishes.watch.shortestCycle = connection.patience();
    wishes.watch.provable = connection.canProve();
    Watch watch(connection.driver(), connection.session(), tags, wishes.watch);
    std::vector<ValueLog> logs = openLogs(wishes, connection.zone(), watch.values().all());

    catchInterrupts();
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
        QTextStream(stderr) << "tolvane-host: " << text << '\n';
    };
    if (wishes.table)
        screen.emplace();
    const LineTime duration = poll(connection, watch, wishes.duration, screen);
    screen.reset();
    return close(connection, watch, wishes, duration, wishes.json ? &logs.back() : nullptr);
}

}  // namespace host
