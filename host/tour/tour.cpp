// What the steps of the tour share: running the loop and remembering what it brought.
#include "host/tour/tour.h"

#include "host/frames/frame_text.h"
#include "host/output/failure.h"

#include <algorithm>

namespace host {

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr LoopSettings TourLoop{milliseconds(300), milliseconds(0)};
constexpr seconds StepPatience(20);
constexpr int ChangesShownOfPoint = 3;

bool samePoint(const Change &left, const Change &right)
{
    return left.point.regName == right.point.regName && left.point.address == right.point.address;
}

}  // namespace

Tour::Tour(const Driver &loadedDriver, const Identity &driverIdentity, VirtualLine &openLine,
           Report &tourReport)
    : driver(loadedDriver),
      identity(driverIdentity),
      line(openLine),
      report(tourReport),
      session(loadedDriver, SessionSettings()),
      loop(loadedDriver, openLine, TourLoop)
{
    loop.observer = [this](const Exchange &exchange) { watch(exchange); };
    session.pointChanged = [this](int stationNo, const QString &regName, int address) {
        const RegisterType *type = identity.type(regName);
        const Point changed{stationNo, regName, address, 1, type && type->isBit};
        if (m_watching)
            changes.append({changed, session.values(changed).first(), 0});
    };
    session.conditionReadEnded = [this](bool done) {
        if (m_watching)
            conditionReadEnds.append(done);
    };
    session.recipeUnitRead = [this](int unit) { recipeUnits.append(unit); };
}

void Tour::begin(const QString &title, const QString &intent, int exchangesShown)
{
    report.step(title, intent);
    exchanges.clear();
    changes.clear();
    conditionReadEnds.clear();
    recipeUnits.clear();
    m_changesComplete = 0;
    m_exchangesToShow = exchangesShown;
    m_watching = true;
}

Point Tour::point(const char *text) const
{
    const int stationNo = 1;
    return parsePoint(driver, identity, QLatin1String(text), stationNo);
}

void Tour::show(const char *name, const Point &point)
{
    report.item(QLatin1String(name),
                text(point) + " = "_s + Report::valueText(session.values(point)));
}

void Tour::write(const Point &point, const QVector<int> &values)
{
    session.write(point, values);
    if (m_watching)
        completeChanges();
}

void Tour::run(int exchangeCount)
{
    const int enough = seen(Outcome::Good) + exchangeCount;
    if (!loop.runUntil([&] { return seen(Outcome::Good) >= enough; }, StepPatience))
        throw Failure("the controller does not answer, or the line was lost"_s);
}

void Tour::finish()
{
    if (!loop.runUntilIdle(StepPatience))
        throw Failure("the driver did not come to an end, or the line was lost"_s);
    if (m_watching && exchanges.size() > m_exchangesToShow && m_exchangesToShow > 0)
        report.line("... and %1 more"_s.arg(exchanges.size() - m_exchangesToShow));
}

QVector<int> Tour::readBack(const Point &point)
{
    m_watching = false;
    session.restart();
    session.readOnce(point);
    finish();
    return session.values(point);
}

void Tour::prepare(const Point &point, const QVector<int> &values)
{
    m_watching = false;
    session.restart();
    write(point, values);
    finish();
    session.restart();
    m_watching = true;
}

int Tour::wordOnTheWire(const QString &regName, int word) const
{
    for (auto exchange = exchanges.crbegin(); exchange != exchanges.crend(); ++exchange) {
        const VARIABLE &item = exchange->frame.var;
        const int index = word - item.startAddr;
        if (exchange->outcome == Outcome::Good && item.regName == regName && index >= 0 &&
            index < exchange->frame.readCount)
            return readReply(exchange->reply, exchange->request()).words.value(index, -1);
    }
    return -1;
}

int Tour::seen(Outcome outcome) const
{
    return int(std::count_if(exchanges.cbegin(), exchanges.cend(), [&](const Exchange &exchange) {
        return exchange.outcome == outcome;
    }));
}

void Tour::watch(const Exchange &exchange)
{
    if (!m_watching)
        return;
    exchanges.append(exchange);
    if (exchanges.size() <= m_exchangesToShow)
        report.exchange(exchange);
    completeChanges();
}

// A finished bit write reports its word once more, to say that the values shown are settled.
QString Tour::changeText(const Change &change) const
{
    return change.before == change.after
               ? "%1 settled: %2"_s.arg(text(change.point)).arg(change.after)
               : "%1 changed: %2 -> %3"_s.arg(text(change.point))
                     .arg(change.before)
                     .arg(change.after);
}

// Inside the driver's call a point still has the value from before; now it has the new one.
void Tour::completeChanges()
{
    for (; m_changesComplete < changes.size(); ++m_changesComplete) {
        Change &change = changes[m_changesComplete];
        change.after = session.values(change.point).first();
        const auto earlier =
            std::count_if(changes.cbegin(), changes.cbegin() + m_changesComplete,
                          [&](const Change &other) { return samePoint(other, change); });
        if (earlier < ChangesShownOfPoint)
            report.item("report"_s, changeText(change));
    }
}

}  // namespace host
