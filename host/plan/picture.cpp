// Writes the waterfall down as SVG, from top to bottom.
#include "host/plan/picture.h"

#include "host/output/table.h"
#include "host/plan/text.h"

#include <algorithm>

namespace host {

namespace {

using std::chrono::microseconds;

// In pixels.
constexpr double PageWidth = 960;
constexpr double Margin = 20;
constexpr double NumberWidth = 22;
constexpr double PlotLeft = 330;
constexpr double PlotWidth = PageWidth - 90 - PlotLeft;  // right of it stands the last row's time
constexpr double HeadHeight = 94;
constexpr double AxisHeight = 26;
constexpr double RowHeight = 36;
constexpr double BarHeight = 16;
constexpr double ChartSpacing = 20;
constexpr double LegendLetter = 5.9;  // rough, for nobody knows the fonts of whoever looks at it
constexpr double TickSpacing = 70;

constexpr int RowsPerChart = 25;
constexpr int LongestNames = 40;  // letters; so wide may 300 pixels be

// A light page with its own dark clothes: what is around it says which it wears.
const char Style[] = R"(<style>
text{font:11px "DejaVu Sans",Verdana,Arial,sans-serif;fill:#1f2328}
.title{font-size:17px;font-weight:bold}.block{font-weight:bold}.end{text-anchor:end}
.middle{text-anchor:middle}.soft{fill:#59636e;font-weight:normal}
.page{fill:#fff}.band{fill:#f3f5f8}.grid{fill:#d1d9e0}
.request{fill:#17436f}.turnaround{fill:#8c959f}.reply{fill:#4f9bdc}.unused{fill:#f2a93b}
@media(prefers-color-scheme:dark){text{fill:#e6edf3}.soft{fill:#9da7b3}
.page{fill:#0d1117}.band{fill:#161b22}.grid{fill:#30363d}
.request{fill:#b6d9ff}.turnaround{fill:#7d8590}.reply{fill:#3479b8}.unused{fill:#e09b2d}}
</style>
)";

// As XML takes it: of the control characters, which a name may hold, it knows hardly any.
QString escaped(QString text)
{
    for (QChar &sign : text)
        if (sign.category() == QChar::Other_Control || sign.unicode() >= 0xFFFE)
            sign = QChar::ReplacementCharacter;
    return text.toHtmlEscaped();
}

// As many of the block's names as there is room for.
QString shortNames(const QStringList &names)
{
    QString text = names.value(0);
    if (text.size() > LongestNames)
        text = text.left(LongestNames - 1) + QChar(0x2026);
    int named = 1;
    while (named < int(names.size()) && text.size() + 2 + names[named].size() <= LongestNames)
        text += ", "_s + names[named++];
    const int left = int(names.size()) - named;
    return left > 0 ? text + " +%1"_s.arg(left) : text;
}

class Picture
{
public:
    Picture(const Driver &driver, const Plan &plan)
        : m_driver(driver), m_plan(plan), m_out(&m_document)
    {
        m_out.setRealNumberNotation(QTextStream::FixedNotation);
        m_out.setRealNumberPrecision(2);
        m_begins.append(microseconds(0));
        for (const Block &block : plan.blocks)
            m_begins.append(m_begins.last() + plan.line.time(costsOf({block})));
        for (int first = 0; first < rows(); first += RowsPerChart)
            m_longest = std::max(m_longest, m_begins[endOf(first)] - m_begins[first]);
    }

    QByteArray draw()
    {
        const int charts = (rows() + RowsPerChart - 1) / RowsPerChart;
        const double height =
            HeadHeight + charts * (AxisHeight + ChartSpacing) + rows() * RowHeight;
        m_out << R"(<svg xmlns="http://www.w3.org/2000/svg" width=")" << PageWidth
              << R"(" height=")" << height << R"(" viewBox="0 0 )" << PageWidth << ' ' << height
              << "\">\n"
              << Style << R"(<clipPath id="names"><rect width=")" << PlotLeft - 8 << R"(" height=")"
              << height << "\"/></clipPath>\n";
        rectangle("page", 0, 0, PageWidth, height);
        drawHead();
        m_top = HeadHeight;
        for (int first = 0; first < rows(); first += RowsPerChart)
            drawChart(first);
        m_out << "</svg>\n";
        m_out.flush();
        return m_document.toUtf8();
    }

private:
    int rows() const { return int(m_plan.blocks.size()); }
    int endOf(int firstRow) const { return std::min(rows(), firstRow + RowsPerChart); }
    double width(microseconds time) const
    {
        return PlotWidth * static_cast<double>(time.count()) /
               static_cast<double>(m_longest.count());
    }

    void rectangle(const char *kind, double x, double y, double width, double height)
    {
        m_out << "<rect class=\"" << kind << "\" x=\"" << x << "\" y=\"" << y << "\" width=\""
              << width << "\" height=\"" << height << "\"/>\n";
    }

    void text(const char *kind, double x, double y, const QString &text)
    {
        m_out << "<text class=\"" << kind << "\" x=\"" << x << "\" y=\"" << y << "\">"
              << escaped(text) << "</text>\n";
    }

    void drawHead()
    {
        text("title", Margin, 32,
             "One poll cycle: %1, %2, %3"_s.arg(countText(m_plan.tags.size(), "tag"),
                                                countText(rows(), "request"),
                                                timeText(m_plan.line.time(m_plan.costs))));
        text("soft", Margin, 52, settingsText(m_plan));
        double x = Margin;
        const auto entry = [&](const char *kind, const QString &label) {
            rectangle(kind, x, 66, 20, 12);
            text("", x + 26, 76, label);
            x += 26 + LegendLetter * static_cast<double>(label.size()) + 22;
        };
        entry("request", "request"_s);
        if (m_plan.line.turnaround.count() > 0)
            entry("turnaround", "turnaround"_s);
        entry("reply", "reply"_s);
        entry("unused",
              "unused words: no tag wants them, they are read along with their neighbours"_s);
    }

    void drawChart(int first)
    {
        const double bottom = m_top + AxisHeight + (endOf(first) - first) * RowHeight;
        for (int row = first; row < endOf(first); row += 2)
            rectangle("band", 0, m_top + AxisHeight + (row - first) * RowHeight, PageWidth,
                      RowHeight);
        drawAxis(m_begins[first], bottom);
        m_top += AxisHeight;
        for (int row = first; row < endOf(first); ++row, m_top += RowHeight)
            drawRow(row, PlotLeft + width(m_begins[row] - m_begins[first]));
        m_top += ChartSpacing;
    }

    void drawAxis(microseconds begin, double bottom)
    {
        qint64 step = 1;  // 1, 2, 5, 10, 20, 50 and so on, in microseconds
        for (int i = 0; width(microseconds(step)) < TickSpacing; ++i)
            step = i % 3 == 1 ? step / 2 * 5 : step * 2;
        for (qint64 at = (begin.count() + step - 1) / step * step;
             at <= (begin + m_longest).count(); at += step) {
            const double x = PlotLeft + width(microseconds(at) - begin);
            rectangle("grid", x - 0.5, m_top + AxisHeight - 6, 1, bottom - m_top - AxisHeight + 6);
            text("soft middle", x, m_top + AxisHeight - 10,
                 QString::number(static_cast<double>(at) / 1000, 'g', 12) + " ms"_s);
        }
    }

    void drawRow(int row, double left)
    {
        const Block &block = m_plan.blocks[row];
        QStringList names;
        for (const int tag : block.tags)
            names.append(m_plan.tags[tag].name);
        const int words = block.point.count;
        const QString address = pointText(m_driver, block.point, namesStations(m_plan.tags));
        const QString size =
            countText(words, "word") +
            (block.unusedWords() == 0 ? QString() : ", %1 unused"_s.arg(block.unusedWords()));
        const QString time = timeText(m_begins[row + 1] - m_begins[row]);

        // Shown while a pointer rests on the row.
        m_out << "<g><title>"
              << escaped("%1: %2; from %3 on for %4: %5"_s.arg(
                     address, size, timeText(m_begins[row]), time, names.join(", "_s)))
              << "</title>\n";
        text("soft end", Margin + NumberWidth, m_top + 15, QString::number(row + 1));
        m_out << "<g clip-path=\"url(#names)\">\n<text class=\"block\" x=\""
              << Margin + NumberWidth + 10 << "\" y=\"" << m_top + 15 << "\">" << escaped(address)
              << " <tspan class=\"soft\">" << size << "</tspan></text>\n";
        text("soft", Margin + NumberWidth + 10, m_top + 29, shortNames(names));
        m_out << "</g>\n";

        const double top = m_top + (RowHeight - BarHeight) / 2;
        const double request = width(m_plan.line.wireTime(block.requestBytes));
        const double turnaround = width(m_plan.line.turnaround);
        const double reply = width(m_plan.line.wireTime(block.replyBytes));
        rectangle("request", left, top, request, BarHeight);
        left += request;
        if (turnaround > 0)
            rectangle("turnaround", left, top + BarHeight / 2 - 1, turnaround, 2);
        left += turnaround;
        rectangle("reply", left, top, reply, BarHeight);
        for (int word = 0, end = 0; word < words; word = end) {
            while (end < words && block.used[end] == block.used[word])
                ++end;
            if (!block.used[word])
                rectangle("unused", left + reply * word / words, top, reply * (end - word) / words,
                          BarHeight);
        }
        text("", left + reply + 6, m_top + RowHeight / 2 + 4, time);
        m_out << "</g>\n";
    }

    const Driver &m_driver;
    const Plan &m_plan;
    QVector<microseconds> m_begins;  // of every row, and the last one's end
    microseconds m_longest{1};       // of the charts, which are of one scale
    QString m_document;
    QTextStream m_out;
    double m_top = 0;  // of what is drawn next
};

}  // namespace

QByteArray drawPlan(const Driver &driver, const Plan &plan)
{
    return Picture(driver, plan).draw();
}

}  // namespace host
