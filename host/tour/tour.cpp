// What the steps of the tour share: running the loop and remembering what it brought.
#include "host/tour/tour.h"

#include "host/frames/frame_text.h"
#include "host/line/serial_settings.h"
#include "host/output/failure.h"

#include <algorithm>

namespace host {

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr LoopSettings TourLoop{milliseconds(300), milliseconds(0)};
constexpr seconds StepPatience(20);
constexpr int ChangesShownOfPoint = 3;
constexpr int ValuesShown = 8;
constexpr int AddressColumn = 12;

VirtualSettings lineOf(const Identity &identity)
{
    VirtualSettings settings;
    settings.line.baud = SerialSettings::parse(identity.serialLine).baudRate;
    return settings;
}

char deviceOf(const Point &point)
{
    return plc::Memory::letter(memoryArea(point.regName).toLatin1());
}

}  // namespace

Tour::Tour(const QString &driverPath, QTextStream &out)
    : report(out),
      driver(loadDriver(driverPath)),
      line(lineOf(driver.identity)),
      session(driver, SessionSettings()),
      loop(driver, line, TourLoop)
{
    line.open();
    loop.observer = [this](const Exchange &exchange) { watch(exchange); };
    session.pointChanged = [this](int stationNo, const QString &regName, int address) {
        const RegisterType *type = driver.identity.type(regName);
        const Point changed{stationNo, regName, address, 1, type && type->isBit};
        m_changes.append({changed, session.values(changed).first(), 0});
    };
    session.conditionReadEnded = [this](bool done) { conditionReads.append(done); };
    session.recipeUnitRead = [this](int) { ++recipeUnits; };
}

void Tour::begin(const char *title, const char *intent, int exchangesShown)
{
    report.step(QLatin1String(title), QLatin1String(intent));
    conditionReads.clear();
    recipeUnits = 0;
    m_exchanges.clear();
    m_changes.clear();
    m_changesComplete = 0;
    m_exchangesToShow = exchangesShown;
}

void Tour::introduceDriver()
{
    QStringList ends[2];
    for (const RegisterType &type : driver.identity.types)
        ends[type.isBit].append(type.name + ":" + type.lastAddress);
    report.item("driver"_s, driver.identity.name + " " + driver.identity.version);
    report.item("line"_s, driver.identity.serialLine);
    report.item("network"_s, driver.identity.networkLine);
    report.item("words"_s, "up to "_s + ends[0].join(", "_s));
    report.item("bits"_s, "up to "_s + ends[1].join(", "_s));
}

void Tour::checkTypes()
{
    QStringList wrong;
    const auto ends = [this](const QString &last) {
        return verdictOn(last).startsWith("address number"_s) &&
               verdictOn(last + "x2").contains(": outside "_s);
    };
    for (const RegisterType &type : driver.identity.types)
        if (const QString last = type.name + ":" + type.lastAddress; !ends(last))
            wrong.append(last);
    report.check("%1 register types, with their last addresses"_s.arg(driver.identity.types.size()),
                 wrong.join(", "_s), QString());
}

QString Tour::verdictOn(const QString &address) const
{
    try {
        return "address number %1"_s.arg(point(address).address);
    } catch (const Failure &refusal) {
        return refusal.text();
    }
}

void Tour::checkAddress(const QString &address, const QString &expectedVerdict)
{
    const QString verdict = verdictOn(address);
    report.check(address.leftJustified(AddressColumn) + verdict, verdict, expectedVerdict);
}

int Tour::monitor(const QStringList &addresses)
{
    session.restart();
    QVector<Point> points;
    for (const QString &address : addresses)
        points.append(point(address));
    return session.monitor(points);
}

void Tour::write(const QString &address, const Values &values)
{
    session.write(point(address), values);
    completeChanges();
}

void Tour::show(const QString &name, const QString &address)
{
    const Values all = values(address);
    report.item(name, "%1 = %2"_s.arg(address, Report::text(all.mid(0, ValuesShown))) +
                          (all.size() > ValuesShown ? ", ... (%1 values)"_s.arg(all.size()) : ""));
}

void Tour::run(int exchanges)
{
    runUntil([&] { return seen(Outcome::Good) >= exchanges; });
}

void Tour::runUntil(const std::function<bool()> &done)
{
    if (!loop.runUntil(done, StepPatience))
        throw Failure("the controller does not answer as it should, or the line was lost"_s);
}

void Tour::finish()
{
    if (!loop.runUntilIdle(StepPatience))
        throw Failure("the driver did not come to an end, or the line was lost"_s);
    if (m_exchanges.size() > m_exchangesToShow)
        report.line("... and %1 more"_s.arg(m_exchanges.size() - m_exchangesToShow));
}

void Tour::measure(seconds duration)
{
    const LoopCounters before = loop.counters();
    const LineTime start = line.now();
    loop.runUntil([] { return false; }, duration);
    const double elapsed = double((line.now() - start).count());
    const LoopCounters all = loop.counters();
    const LoopCounters counted = all - before;
    const LineTime travel = line.wireTime(int(counted.bytesSent + counted.bytesReceived));

    report.check("no request was given up"_s, counted.errors, 0);
    report.item("measured"_s, "%1 exchanges, %2 words a second, %3 % of what %4 can carry"_s
                                  .arg(counted.exchanges)
                                  .arg(double(counted.wordsRead) * 1e9 / elapsed, 0, 'f', 0)
                                  .arg(100 * double(travel.count()) / elapsed, 0, 'f', 1)
                                  .arg(driver.identity.serialLine));
    report.item("in all"_s, "%1 exchanges, %2 requests repeated, %3 given up"_s.arg(all.exchanges)
                                .arg(all.retries)
                                .arg(all.errors));
}

Values Tour::wire(const QString &address) const
{
    const Point sought = point(address);
    for (auto exchange = m_exchanges.crbegin(); exchange != m_exchanges.crend(); ++exchange) {
        const int index = sought.address - exchange->frame.var.startAddr;
        const Values words = readReply(exchange->reply, exchange->request()).words;
        if (exchange->outcome == Outcome::Good && exchange->frame.var.regName == sought.regName &&
            index >= 0 && index < words.size())
            return words.mid(index, 1);
    }
    return {};
}

Values Tour::held(const QString &address)
{
    const Point sought = point(address);
    Values values;
    for (int i = 0; i < sought.count; ++i)
        values.append(line.memory().word(deviceOf(sought), sought.address + i));
    return values;
}

void Tour::hold(const QString &address, const Values &values)
{
    const Point sought = point(address);
    for (int i = 0; i < sought.count; ++i)
        line.memory().setWord(deviceOf(sought), sought.address + i, quint16(values.value(i)));
}

int Tour::seen(Outcome outcome) const
{
    return int(
        std::count_if(m_exchanges.cbegin(), m_exchanges.cend(),
                      [&](const Exchange &exchange) { return exchange.outcome == outcome; }));
}

int Tour::reportsOf(const Point &point) const
{
    return int(std::count_if(
        m_changes.cbegin(), m_changes.cbegin() + m_changesComplete,
        [&](const Change &change) { return rangeOf(change.point) == rangeOf(point); }));
}

int Tour::settled() const
{
    return int(std::count_if(m_changes.cbegin(), m_changes.cend(),
                             [](const Change &change) { return change.before == change.after; }));
}

const Exchange &Tour::last() const
{
    if (m_exchanges.isEmpty())
        throw Failure("the driver has sent nothing"_s);
    return m_exchanges.constLast();
}

void Tour::watch(const Exchange &exchange)
{
    m_exchanges.append(exchange);
    if (m_exchanges.size() <= m_exchangesToShow)
        report.exchange(exchange);
    completeChanges();
}

// Inside the driver's call a point still has the value from before; now it has the new one. A
// finished bit write reports its word once more, to say that the values shown are settled.
void Tour::completeChanges()
{
    for (; m_changesComplete < m_changes.size(); ++m_changesComplete) {
        Change &change = m_changes[m_changesComplete];
        change.after = session.values(change.point).first();
        if (reportsOf(change.point) >= ChangesShownOfPoint)
            continue;
        const QString text = pointText(driver, change.point);
        report.item("report"_s,
                    change.before == change.after
                        ? "%1 settled: %2"_s.arg(text).arg(change.after)
                        : "%1 changed: %2 -> %3"_s.arg(text).arg(change.before).arg(change.after));
    }
}

}  // namespace host
