// Draws the plan: a title, the rows of all lanes, the legend.
#include "host/plan/picture.h"

#include "host/output/table.h"
#include "host/plan/page.h"
#include "host/plan/svg.h"

#include <algorithm>

namespace host {

namespace {

using std::chrono::microseconds;

constexpr double TitleHeight = 62;
constexpr double LegendHeight = 56;
constexpr double LabelTurn = -60;
constexpr double LabelSize = 10.5;
constexpr double AddressSpacing = 46;  // between addresses on the axis
constexpr double RoomForTime = 74;     // of a block that is named with its wire time
constexpr double RoomForNumber = 14;

constexpr const char *Colours[] = {"#deebf7", "#b3d0e8", "#7fb2d9", "#3f86bf", "#0d4f8b"};
constexpr int ColourCount = 5;
constexpr int FirstDarkColour = 3;
const char Grey[] = "#777";

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

// Wire times in classes of equal width, a colour each.
class Scale
{
public:
    explicit Scale(const Plan &plan)
    {
        for (const Block &block : plan.blocks) {
            const qint64 time = plan.line.wireTime(block.bytes()).count();
            m_lowest = m_lowest < 0 ? time : std::min(m_lowest, time);
            m_highest = std::max(m_highest, time);
        }
    }

    int classes() const { return m_highest > m_lowest ? ColourCount : 1; }
    microseconds lowerBound(int index) const
    {
        return microseconds(m_lowest + (m_highest - m_lowest) * index / classes());
    }
    int classOf(microseconds time) const
    {
        const qint64 range = std::max<qint64>(1, m_highest - m_lowest);
        return int(std::min<qint64>(classes() - 1, (time.count() - m_lowest) * classes() / range));
    }

private:
    qint64 m_lowest = -1;
    qint64 m_highest = 0;
};

// The widest part of a block without a bridged gap.
Extent widestColoured(const Bar &bar)
{
    Extent widest;
    double from = bar.place.left;
    const auto consider = [&](double to) {
        if (to - from > widest.width())
            widest = Extent{from, to};
    };
    for (const Extent &gap : bar.gaps) {
        consider(gap.left);
        from = gap.right;
    }
    consider(bar.place.right);
    return widest;
}

class Picture
{
public:
    Picture(const Driver &driver, const Plan &plan, const QVector<Shelf> &shelves, double height)
        : m_driver(driver), m_plan(plan), m_scale(plan), m_svg(PageWidth, height + LegendHeight)
    {
        drawTitle();
        for (const Shelf &shelf : shelves)
            for (const Shelf::Place &place : shelf.places)
                drawRow(shelf, place);
        drawLegend(height + 8);
    }

    QByteArray finish() { return m_svg.finish(); }

private:
    void drawTitle()
    {
        TextStyle style;
        style.size = 17;
        style.bold = true;
        m_svg.text({16, 28},
                   "One poll cycle: %1, %2, %3"_s.arg(countText(m_plan.tags.size(), "tag"),
                                                      countText(m_plan.costs.requests, "request"),
                                                      timeText(m_plan.costs.time)),
                   style);
        m_svg.text({16, 48}, settingsText(m_plan));
    }

    void drawRow(const Shelf &shelf, const Shelf::Place &place)
    {
        m_left = place.left;
        TextStyle style;
        style.size = 14;
        style.bold = true;
        const double nameAt = m_left - LaneNameWidth;
        m_svg.text({nameAt, shelf.blocks + 10}, place.row.lane.regName, style);
        style = TextStyle();
        style.size = 10;
        m_svg.text({nameAt, shelf.blocks + 23},
                   place.continued ? "continued"_s : "station %1"_s.arg(place.row.lane.stationNo),
                   style);
        drawTags(place.row, shelf);
        for (const Bar &bar : place.row.blocks)
            drawBlock(bar, shelf.blocks);
        drawAxis(place.row, shelf.axis, shelf.blocks - 2);
    }

    void drawTags(const Row &row, const Shelf &shelf)
    {
        TextStyle style;
        style.size = LabelSize;
        style.turn = LabelTurn;
        const int named = int(row.tags.size()) - row.tagsUnnamed;
        for (int i = 0; i < int(row.tags.size()); ++i) {
            const Bar &bar = row.tags[i];
            const Tag &tag = m_plan.tags[bar.index];
            const double y = shelf.tags + bar.level * TagHeight;
            m_svg.rectangle(
                QRectF(m_left + bar.place.left, y, bar.place.width() - 0.6, TagHeight - 1.5),
                text("#444"), text("none"), tag.name);
            if (i >= named)
                continue;
            m_svg.path({QPointF(m_left + bar.labelAt, shelf.labels),
                        QPointF(m_left + bar.place.middle(), shelf.tags - 2),
                        QPointF(m_left + bar.place.middle(), y)},
                       text("#aaa"), 0.7);
            const bool standsForRest = row.tagsUnnamed > 0 && i == named - 1;
            m_svg.text({m_left + bar.labelAt + 3, shelf.labels - 2},
                       standsForRest ? "and %1 more"_s.arg(row.tagsUnnamed + 1) : labelText(tag),
                       style);
        }
    }

    void drawBlock(const Bar &bar, double top)
    {
        const Block &block = m_plan.blocks[bar.index];
        const microseconds time = m_plan.line.wireTime(block.bytes());
        const int colour = m_scale.classOf(time);
        const double width = bar.place.width();
        const QRectF place(m_left + bar.place.left + 0.5, top + bar.level * BlockHeight, width - 1,
                           BlockHeight - 3);
        m_svg.rectangle(place, text(Colours[colour]), text("#333"),
                        "%1: %2, %3 + %4 bytes, %5"_s
                            .arg(pointText(m_driver, block.point), countText(block.words, "word"))
                            .arg(block.requestBytes)
                            .arg(block.replyBytes)
                            .arg(timeText(time)));
        for (const Extent &gap : bar.gaps)
            m_svg.rectangle(
                QRectF(m_left + gap.left, place.top() + 0.5, gap.width(), place.height() - 1),
                text(Svg::Hatch), text("none"));
        nameBlock(bar, place, time, text(colour >= FirstDarkColour ? "#fff" : "#111"));
    }

    void nameBlock(const Bar &bar, const QRectF &place, microseconds time, const QString &colour)
    {
        const Extent free = widestColoured(bar);
        TextStyle style;
        style.size = 10;
        style.anchor = text("middle");
        style.colour = colour;
        QPointF at(m_left + free.middle(), place.center().y() + 3.6);
        const QString number = QString::number(bar.index + 1);
        const bool isPatched = free.width() < RoomForNumber && place.width() >= RoomForTime;
        if (isPatched) {  // gaps everywhere: make room in the middle
            at.setX(place.center().x());
            style.colour = text("#111");
            m_svg.rectangle(
                QRectF(at.x() - RoomForTime / 2, place.top() + 3, RoomForTime, place.height() - 6),
                text("#fff"), text("none"));
        }
        if (isPatched || free.width() >= RoomForTime)
            m_svg.text(at, "%1: %2"_s.arg(number, timeText(time)), style);
        else if (free.width() >= RoomForNumber)
            m_svg.text(at, number, style);
    }

    void drawAxis(const Row &row, double y, double top)
    {
        double labelled = -AddressSpacing;
        for (int i = 0; i < int(row.segments.size()); ++i) {
            const Segment &segment = row.segments[i];
            m_svg.path({QPointF(m_left + segment.left, y), QPointF(m_left + segment.right(), y)},
                       text("#333"), 1);
            drawTicks(segment, y, labelled);
            if (i + 1 < int(row.segments.size()))
                drawBreak((segment.right() + row.segments[i + 1].left) / 2, y, top);
        }
    }

    // An address stands below the middle of its unit: the first of every segment, then round ones.
    void drawTicks(const Segment &segment, double y, double &labelled)
    {
        int step = 1;
        for (const int factor : {1, 2, 5, 10, 20, 50, 100})
            if (step * segment.scale < AddressSpacing)
                step = factor;
        TextStyle style;
        style.size = 10;
        style.anchor = text("middle");
        for (int unit = segment.units.first; unit < segment.units.end(); ++unit) {
            const bool isFirst = unit == segment.units.first;
            if (!isFirst && unit % step != 0)
                continue;
            const double x = segment.at(unit + 0.5);
            const bool hasRoom = isFirst || x - labelled >= AddressSpacing * 0.8;
            m_svg.path({QPointF(m_left + x, y), QPointF(m_left + x, y + (hasRoom ? 5 : 3))},
                       text("#333"), 1);
            if (!hasRoom)
                continue;
            m_svg.text({m_left + x, y + 16}, QString::number(unit), style);
            labelled = x;
        }
    }

    void drawBreak(double x, double y, double top)
    {
        const double at = m_left + x;
        for (const double shift : {-3.0, 3.0})
            m_svg.path({QPointF(at + shift - 3, y + 6), QPointF(at + shift + 3, y - 6)},
                       text("#333"), 1.2);
        for (int dash = 0; top + 6 * dash < y - 8; ++dash)
            m_svg.path({QPointF(at, top + 6 * dash), QPointF(at, top + 6 * dash + 3)}, text("#bbb"),
                       1);
    }

    void drawLegend(double top)
    {
        TextStyle style;
        style.size = 10.5;
        double x = 16;
        const auto entry = [&](const QString &fill, const QString &label) {
            m_svg.rectangle(QRectF(x, top, 22, 12), fill, text("#333"));
            m_svg.text({x + 27, top + 10}, label, style);
            x += 27 + textWidth(label) + 18;
        };
        for (int i = 0; i < m_scale.classes(); ++i)
            entry(text(Colours[i]), m_scale.classes() == 1
                                        ? timeText(m_scale.lowerBound(0)) + text(" on the wire")
                                        : text(i == 0 ? "on the wire: from " : "from ") +
                                              timeText(m_scale.lowerBound(i)));
        entry(text(Svg::Hatch), text("bridged: read, no tag"));
        style.colour = text(Grey);
        m_svg.text({16, top + 32},
                   text("Each block is one request, by its number in the order of sending. "
                        "Addresses are words (contacts for TX and CX); // cuts out addresses that "
                        "are not read."),
                   style);
    }

    const Driver &m_driver;
    const Plan &m_plan;
    Scale m_scale;
    Svg m_svg;
    double m_left = 0;  // of the row that is being drawn
};

}  // namespace

QByteArray drawPlan(const Driver &driver, const Plan &plan)
{
    const QVector<Shelf> shelves = layOutPage(plan.blocks, plan.tags, TitleHeight);
    const double height = shelves.isEmpty() ? TitleHeight : shelves.last().bottom;
    return Picture(driver, plan, shelves, height).finish();
}

}  // namespace host
