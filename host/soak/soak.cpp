// What the panel does at random, and how the soak ends.
#include "host/soak/soak.h"

#include "host/output/failure.h"

#include <algorithm>

namespace host {

namespace {

struct Area
{
    const char *regName;
    bool isBit;
    int first;  // address number
    int count;
};

// So small that ranges often overlap, and with neighbours on both sides.
constexpr Area Areas[] = {
    {"D_W", false, 50, 200},
    {"M_bit", true, 8 * 16, 16 * 16},
    {"TX", true, 16, 120},
    {"M_W", false, 8, 16},
};
constexpr int AreaCount = int(std::size(Areas));
// No two of these have words in common, as a recipe must not.
constexpr int RecipeAreaCount = 3;

constexpr const char *FilledDevices[] = {"D", "M", "TX", "P", "L"};
constexpr int FilledWords = 300;

// Frames carry no station: the driver keeps them apart, and the controller answers for all.
constexpr int Stations = 2;

constexpr int LongestWrite = 40;  // words or bits: always one request
constexpr int LongestBurst = 7;
constexpr int PendingAtMost = 50;  // far from the end of the driver's queue
constexpr int PatientExchanges = 3000;
constexpr int NothingRead = 0xEEEE;

// Random words where the soak writes, and around.
const plc::Memory &filled(plc::Memory &memory, quint32 seed)
{
    std::mt19937 random(seed);
    for (const char *device : FilledDevices)
        for (int word = 0; word < FilledWords; ++word)
            memory.setWord(plc::Memory::letter(device), word, quint16(random()));
    return memory;
}

}  // namespace

Soak::Soak(const Driver &driver, VirtualLine &line, const LoopSettings &settings, quint32 seed)
    : m_driver(driver),
      m_line(line),
      m_book(filled(line.memory(), seed)),
      m_session(driver, SessionSettings()),
      m_loop(driver, line, settings),
      m_random(seed)
{
    m_loop.observer = [this](const Exchange &exchange) { book(exchange); };
    m_session.conditionReadEnded = [this](bool done) { conditionReadEnded(done); };
    monitor();
}

void Soak::run(qint64 requests)
{
    while (m_counts.requests < requests)
        step();
}

void Soak::step()
{
    if (!m_inFlight) {
        const int roll = dice(120);
        if (roll == 0)
            monitor();
        else if (roll <= 4)
            transferRecipe(roll <= 2);
    }
    const int roll = dice(24);
    if (roll < 2)
        for (int i = 1 + dice(LongestBurst); i > 0 && m_writes.size() < PendingAtMost; --i)
            write();
    else if (roll < 4 && !m_conditionRead)
        readOnCondition(anyPoint(dice(AreaCount)));
    exchange();
}

Point Soak::anyPoint(int area)
{
    const Area &from = Areas[area];
    Point point;
    point.stationNo = 1 + dice(Stations);
    point.regName = QLatin1String(from.regName);
    point.isBit = from.isBit;
    const int offset = dice(from.count);
    point.address = from.first + offset;
    point.count = dice(2) ? 1 : std::min(1 + dice(LongestWrite), from.count - offset);
    return point;
}

QVector<int> Soak::anyValues(const Point &point)
{
    QVector<int> values;
    for (int i = 0; i < point.count; ++i)
        values.append(dice(point.isBit ? 2 : 0x10000));
    return values;
}

void Soak::monitor()
{
    m_monitored.clear();
    for (int i = 4 + dice(12); i > 0; --i)
        m_monitored.append(anyPoint(dice(AreaCount)));
    m_pollRequests = m_session.monitor(m_monitored);
    ++m_counts.registrations;
}

void Soak::write()
{
    // Now and then the same range again, while the write before may still wait.
    const Point point = dice(5) == 0 && !m_lastWritten.regName.isEmpty()
                            ? m_lastWritten
                            : anyPoint(dice(AreaCount));
    const QVector<int> values = anyValues(point);
    if (m_conditionRead && shareWords(point, *m_conditionRead))
        m_undisturbed = false;
    m_lastWritten = point;
    const int kind = FirstWriteKind + m_counts.writes++;
    m_writes.insert(kind, {point, values});
    m_session.write(point, values, kind);
}

void Soak::readOnCondition(const Point &point)
{
    m_conditionRead = point;
    m_undisturbed = !isWriting(point);
    ++m_counts.conditionReads;
    m_session.readOnce(point);
}

void Soak::transferRecipe(bool write)
{
    Recipe recipe;
    recipe.written = write;
    QVector<Point> points;
    for (int area = 0; area < RecipeAreaCount; ++area) {
        const Point point = anyPoint(area);
        points.append(point);
        recipe.entries.append(
            {point, write ? anyValues(point) : QVector<int>(point.count, NothingRead)});
    }
    const QVector<int> firstUnits = m_session.setRecipe(points);
    for (int entry = 0; entry < points.size(); ++entry)
        for (int i = 0; i < points[entry].count; ++i)
            m_session.setRecipeUnit(firstUnits[entry] + i, recipe.entries[entry].values[i]);

    if (write)
        m_session.requestRecipeWrite();
    else
        m_session.requestRecipeRead();
    m_recipe = recipe;
    for (int i = 0; i < PatientExchanges && m_session.recipeBusy(); ++i)
        exchange();
    checkRecipe(firstUnits);
    m_recipe.reset();
    m_undisturbed = m_undisturbed && !write;
}

void Soak::exchange()
{
    const Outcome outcome = m_loop.exchange();
    m_idle = outcome == Outcome::Idle ? m_idle + 1 : 0;
    if (m_idle > 1)
        throw Failure("the driver has nothing to send, though it is to monitor"_s);
}

void Soak::settle()
{
    m_line.heal();
    // The cyclic reads get their turn between the writes, so by then the queue is served, and two
    // more cycles have shown what the controller holds.
    const int enough = m_polls + PendingAtMost + 2 * m_pollRequests;
    for (int i = 0; i < PatientExchanges && m_polls < enough; ++i)
        exchange();
    if (m_polls < enough)
        report(Claim::Accounted, "on a good line the cyclic reads do not go on"_s);
    for (const Shown &write : std::as_const(m_writes))
        report(Claim::Accounted,
               "a write of %1 was neither acknowledged nor reported as failed"_s.arg(
                   rangeText(write.point)));
    for (const Point &point : std::as_const(m_monitored))
        m_shown.append({point, m_session.values(point)});

    for (const Area &area : Areas) {
        Point all;
        all.stationNo = 1;
        all.regName = QLatin1String(area.regName);
        all.address = area.first;
        all.count = area.count;
        all.isBit = area.isBit;
        if (!m_conditionRead)
            readOnCondition(all);
        for (int i = 0; i < PatientExchanges && m_conditionRead; ++i)
            exchange();
        if (m_conditionRead)
            report(Claim::Accounted, "a condition read of %1 does not end"_s.arg(
                                         pointText(m_driver, *m_conditionRead)));
        m_shown.append({all, m_session.values(all)});
    }
}

}  // namespace host
