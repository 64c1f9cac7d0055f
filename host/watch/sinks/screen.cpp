// Composes the table and writes it in one go, so that it does not flicker.
#include "host/watch/sinks/screen.h"

#include "host/output/table.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace host {

namespace {

constexpr int LeastNameWidth = 6;
constexpr int LeastValueWidth = 8;
constexpr int TrendWidth = 16;
constexpr int ChangesWidth = 7;
constexpr int LeastStateWidth = 12;  // changes, or the beginning of a reason
constexpr int AgeWidth = 7;
constexpr int Gap = 2;

constexpr winsize UsualTerminal{24, 80, 0, 0};

winsize terminalSize()
{
    winsize size = UsualTerminal;
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0)
        return UsualTerminal;
    return size;
}

void put(const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

QString trendText(const QVector<double> &trend, bool unicode)
{
    static const QString bars = "▁▂▃▄▅▆▇█"_s;
    static const QString plain = "_.,-=+*#"_s;
    const QString &levels = unicode ? bars : plain;
    if (trend.isEmpty())
        return QString();
    const auto range = std::minmax_element(trend.cbegin(), trend.cend());
    const double span = *range.second - *range.first;
    QString text;
    for (const double sample : trend) {
        const double height = span > 0 ? (sample - *range.first) / span : 0;
        text += levels[std::clamp(int(height * double(levels.size())), 0, int(levels.size()) - 1)];
    }
    return text;
}

QString ageText(const std::optional<LineTime> &since, LineTime now)
{
    if (!since)
        return "-"_s;
    const double seconds = std::chrono::duration<double>(now - *since).count();
    if (seconds < 60)
        return "%1 s"_s.arg(seconds, 0, 'f', 1);
    return seconds < 3600 ? "%1 min"_s.arg(int(seconds / 60)) : "%1 h"_s.arg(int(seconds / 3600));
}

/** The columns and their widths, 0 for one that is not there. */
struct Layout
{
    int name = 0;
    int address = int(std::strlen("address"));
    int value = LeastValueWidth;
    int trend = TrendWidth;
    int changed = AgeWidth;
    int spare = 0;  // columns that reasons may take beyond their own

    Layout(const QVector<WatchedValue> &values, int columns)
    {
        for (const WatchedValue &item : values) {
            name = std::max(name, item.hasOwnName ? int(item.name.size()) : 0);
            address = std::max(address, int(item.address.size()));
            value = std::max(value, int(item.text.size()));
        }
        // Addresses and values tell rows apart, so names give way first.
        name = std::min(name, std::max(LeastNameWidth, name - (width() - columns)));
        for (int *column : {&trend, &changed, &name})
            if (width() > columns)
                *column = 0;
        int longest = 0;
        for (const WatchedValue &item : values)
            longest = std::max(longest, int(item.reason.size()));
        spare = std::max(0, std::min(columns - width(), longest - state()));
    }

    /** Between value and ages: trend and changes, or why the value is not good. */
    int state() const { return spare + (trend > 0 ? trend + Gap + ChangesWidth : LeastStateWidth); }

    int width() const
    {
        int sum = address + Gap + value + Gap + state() + Gap + AgeWidth;
        for (const int column : {name, changed})
            sum += column > 0 ? column + Gap : 0;
        return sum;
    }

    Table table() const
    {
        QVector<Table::Column> columns;
        if (name > 0)
            columns << Table::Column{Table::Left, name, 0};
        columns << Table::Column{Table::Left, address, name > 0 ? Gap : 0}
                << Table::Column{Table::Right, value} << Table::Column{Table::Left, state()};
        for (const int width : {changed, AgeWidth})
            if (width > 0)
                columns << Table::Column{Table::Right, width};
        return Table(columns);
    }

    QStringList row(const QString &nameText, const QString &addressText, const QString &valueText,
                    const QString &stateText, const QString &changedText,
                    const QString &readText) const
    {
        QStringList cells;
        if (name > 0)
            cells << nameText.left(name);
        cells << addressText << valueText << stateText.left(state());
        if (changed > 0)
            cells << changedText;
        return cells << readText;
    }

    QString stateText(const QString &trendText, const QString &changesText) const
    {
        return trend > 0 ? trendText.leftJustified(trend) + QString(Gap, QLatin1Char(' ')) +
                               changesText.rightJustified(ChangesWidth)
                         : changesText.rightJustified(ChangesWidth);
    }
};

}  // namespace

QVector<TableLine> composeTable(const QVector<WatchedValue> &values, LineTime now, int rows,
                                int columns, bool unicode)
{
    const auto isPoor = [](const WatchedValue &value) { return value.quality != Quality::Good; };
    const Layout layout(values, columns);
    Table table = layout.table();
    table.add(layout.row("name"_s, "address"_s, "value"_s, layout.stateText("trend"_s, "changes"_s),
                         "changed"_s, "read"_s));
    const int all = int(values.size());
    const int shown = all < rows ? all : std::max(1, rows - 2);  // heading, "more"
    for (const WatchedValue &value : values.mid(0, shown))
        table.add(layout.row(value.hasOwnName ? value.name : QString(), value.address,
                             value.text.isEmpty() ? "-"_s : value.text,
                             isPoor(value) ? value.reason
                                           : layout.stateText(trendText(value.trend, unicode),
                                                              QString::number(value.changes)),
                             ageText(value.changedAt, now), ageText(value.readAt, now)));
    QVector<TableLine> lines;
    for (const QString &text : table.lines())
        lines.append({text, !lines.isEmpty() && isPoor(values[lines.size() - 1])});
    if (all > shown) {
        const auto hidden = std::count_if(values.cbegin() + shown, values.cend(), isPoor);
        lines.append({"... and %1 more"_s.arg(all - shown) +
                          (hidden > 0 ? ", %1 of them not good"_s.arg(hidden) : QString()),
                      hidden > 0});
    }
    return lines;
}

bool isTerminal()
{
    return ::isatty(STDOUT_FILENO) == 1;
}

Screen::Screen() : m_unicode(std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0)
{
}

void Screen::draw(const QVector<WatchedValue> &values, const LoopCounters &counters,
                  const LineUse &lately, LineTime now)
{
    const winsize size = terminalSize();
    const int columns = size.ws_col - 1;
    QVector<TableLine> lines = composeTable(values, now, size.ws_row - 2, columns, m_unicode);
    lines.append({"%1 exchanges/s   %2 retries   %3 errors   %4"_s
                      .arg(lately.exchangesPerSecond(), 0, 'f', 1)
                      .arg(counters.retries)
                      .arg(counters.errors)
                      .arg(lately.shareText()),
                  false});
    // The cursor is hidden no longer than that, for nobody would give it back after a crash.
    QByteArray drawing = "\x1b[?25l" + toTop();
    for (const TableLine &line : std::as_const(lines)) {
        const QByteArray text = line.text.left(columns).toUtf8();
        drawing += (line.isGrey ? "\x1b[90m" + text + "\x1b[0m" : text) + "\x1b[K\r\n";
    }
    m_linesAbove = int(lines.size());
    put(drawing + "\x1b[J\x1b[?25h");
}

void Screen::makeRoom()
{
    if (::isatty(STDERR_FILENO) == 1)
        put(toTop() + "\x1b[J");
}

QByteArray Screen::toTop()
{
    const int lines = std::exchange(m_linesAbove, 0);
    return lines > 0 ? "\r\x1b[" + QByteArray::number(lines) + "A" : QByteArray("\r");
}

}  // namespace host
