// Composes the table and writes it in one go, so that it does not flicker.
#include "host/watch/screen.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace host {

namespace {

constexpr int LeastNameWidth = 8;
constexpr int AddressWidth = 12;
constexpr int ValueWidth = 13;
constexpr int TrendWidth = 16;
constexpr int ChangesWidth = 7;
constexpr int AgeWidth = 6;
constexpr int Gap = 2;
constexpr int RightOfName =
    AddressWidth + ValueWidth + TrendWidth + ChangesWidth + AgeWidth + 5 * Gap;

constexpr int LinesBesideValues = 4;  // heading, "more", status, the cursor's own
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
    static const QString bars = QString::fromUtf8("▁▂▃▄▅▆▇█");
    static const QString plain = QStringLiteral("_.,-=+*#");
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

QString ageText(const QElapsedTimer &since)
{
    if (!since.isValid())
        return QStringLiteral("-");
    const double seconds = double(since.elapsed()) / 1000;
    if (seconds < 60)
        return QStringLiteral("%1 s").arg(seconds, 0, 'f', 1);
    return seconds < 3600 ? QStringLiteral("%1 min").arg(int(seconds / 60))
                          : QStringLiteral("%1 h").arg(int(seconds / 3600));
}

QString row(int nameWidth, const QString &name, const QString &address, const QString &value,
            const QString &trend, const QString &changes, const QString &age)
{
    return QStringList{name.leftJustified(nameWidth, QLatin1Char(' '), true),
                       address.leftJustified(AddressWidth),
                       value.rightJustified(ValueWidth),
                       trend.leftJustified(TrendWidth),
                       changes.rightJustified(ChangesWidth),
                       age.rightJustified(AgeWidth)}
        .join(QLatin1String("  "));
}

}  // namespace

bool isTerminal()
{
    return ::isatty(STDOUT_FILENO) == 1;
}

Screen::Screen() : m_unicode(std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0)
{
    put("\x1b[?25l");
}

Screen::~Screen()
{
    put("\x1b[?25h");
}

void Screen::draw(const QVector<WatchedValue> &values, const LoopCounters &counters,
                  const LineUse &lately)
{
    const winsize size = terminalSize();
    const int shown =
        std::clamp(size.ws_row - LinesBesideValues, 1, std::max(1, int(values.size())));
    int nameWidth = LeastNameWidth;
    for (const WatchedValue &value : values)
        nameWidth = std::max(nameWidth, int(value.name.size()));
    nameWidth = std::min(nameWidth, std::max(LeastNameWidth, size.ws_col - 1 - RightOfName));
    QByteArray drawing = "\r";
    if (m_linesAbove > 0)
        drawing += "\x1b[" + QByteArray::number(m_linesAbove) + "A";
    m_linesAbove = 0;

    line(drawing,
         row(nameWidth, QStringLiteral("name"), QStringLiteral("address"), QStringLiteral("value"),
             QStringLiteral("trend"), QStringLiteral("changes"), QStringLiteral("age")),
         size.ws_col);
    for (const WatchedValue &value : values.mid(0, shown))
        line(drawing,
             row(nameWidth, value.name, value.address == value.name ? QString() : value.address,
                 value.text.isEmpty() ? QStringLiteral("-") : value.text,
                 trendText(value.trend, m_unicode), QString::number(value.changes),
                 ageText(value.sinceChange)),
             size.ws_col);
    if (values.size() > shown)
        line(drawing, QStringLiteral("... and %1 more").arg(values.size() - shown), size.ws_col);
    line(drawing,
         QStringLiteral("%1 exchanges/s   %2 retries   %3 errors   %4")
             .arg(lately.exchangesPerSecond(), 0, 'f', 1)
             .arg(counters.retries)
             .arg(counters.errors)
             .arg(lately.shareText()),
         size.ws_col);
    put(drawing + "\x1b[J");
}

void Screen::line(QByteArray &drawing, const QString &text, int columns)
{
    drawing += text.left(columns - 1).toUtf8() + "\x1b[K\r\n";
    ++m_linesAbove;
}

}  // namespace host
