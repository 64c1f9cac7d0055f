// Tells values, counts, pace and dead blocks what has happened on the line.
#include "host/watch/watch.h"

#include "host/driver/address.h"

#include <utility>

namespace host {

namespace {

constexpr std::chrono::milliseconds AgeEvery(100);
constexpr std::chrono::milliseconds PauseAtMost(50);  // Ctrl-C and the table do not wait longer
constexpr int CyclesUntilStale = 3;
constexpr int LastSteps = 4;  // in which the values at the end are proven

QVector<Point> pointsOf(const QVector<Tag> &tags)
{
    QVector<Point> points;
    for (const Tag &tag : tags)
        points.append(tag.point);
    return points;
}

}  // namespace

Watch::Watch(const Driver &driver, Session &session, const QVector<Tag> &tags,
             const WatchSettings &settings)
    : m_driver(driver),
      m_session(session),
      m_tags(tags),
      m_settings(settings),
      m_values(driver, session, tags),
      m_statistics(driver, namesStations(tags)),
      m_setAside(pointsOf(tags)),
      m_pace(settings.poll),
      m_lastGood(tags.first().point)
{
    m_unproven.report = [this](const QVector<WatchedValue> &values, LineTime at) {
        report(values, at);
    };
    m_session.conditionReadEnded = [this](bool) { m_proving = false; };
    m_setAside.gone = [this](const Point &block) {
        say("%1 (%2) was given up three times in a row; it is tried again every 10 s"_s.arg(
            pointText(m_driver, block, namesStations(m_tags)), tagsIn(block)));
    };
    m_setAside.back = [this](const Point &block) {
        say("%1 (%2) answers again"_s.arg(pointText(m_driver, block, namesStations(m_tags)),
                                          tagsIn(block)));
    };
}

void Watch::run(Line &line, const std::function<Outcome()> &step, LineTime duration,
                const std::function<bool()> &goOn)
{
    const LineTime start = line.now();
    const LineTime end = duration < LineTime::max() - start ? start + duration : LineTime::max();
    m_nextSample = start + m_settings.every;
    registerPoints(start);
    while (line.now() < end && goOn()) {
        pass(line.now());
        const int words = wantedWords();
        if (words > 0)
            askForProof(words);
        const LineTime wait = std::min(m_pace.wait(line.now()), end - line.now());
        if (wait > LineTime(0) && !m_proving)
            line.pause(std::min(wait, LineTime(PauseAtMost)));
        else if (step() == Outcome::LineLost)
            loseLine(line.now());
    }
    pass(std::min(line.now(), end));
    m_settings.every = std::min(m_settings.every, LineTime(0));
    for (int i = 0; i < LastSteps && !m_unproven.isEmpty() && goOn() && line.isOpen(); ++i) {
        askForProof(2 - i % 2);
        step();
    }
}

// One read beside the cycle, of another length than the reply that came last.
void Watch::askForProof(int words)
{
    if (!std::exchange(m_proving, true))
        m_session.readOnce(provingPart(m_lastGood, words));
}

void Watch::take(const Exchange &exchange, LineTime now)
{
    sampleUntil(now);
    takeProof(exchange.earlier, now);
    m_inFlight = exchange.outcome == Outcome::Again || exchange.outcome == Outcome::LineLost;
    const bool isProof = exchange.frame.var.kind == Session::ConditionReadKind;
    if (exchange.outcome == Outcome::LineLost)
        loseLine(now);
    else if (exchange.frame.readCount > 0 && !isProof && exchange.outcome != Outcome::Interrupted)
        takeRead(exchange, now);
}

void Watch::takeProof(const StepGuard::Verdict &earlier, LineTime now)
{
    switch (earlier.step) {
        case Step::Unproven:
            return;
        case Step::Proven:
            return m_unproven.prove();
        case Step::Unsure:
            return m_unproven.doubt(earlier.since, "not proven"_s);
        case Step::Lost:
            m_unproven.doubt(earlier.since, "out of step"_s);
            say("out of step since %1: a reply came that nobody had asked for, and each since then "
                "may be another request's; what came with them is bad, and is read again"_s.arg(
                    momentText(earlier.since)));
            return reportChanges(m_values.doubt(earlier.since, "out of step"_s), now);
    }
}

void Watch::loseLine(LineTime now)
{
    m_unproven.doubt(LineTime(0), "not proven"_s);
    reportChanges(m_values.loseLine(), now);
    m_registerAgain = m_setAside.lineLost() || m_registerAgain;
}

void Watch::takeRead(const Exchange &exchange, LineTime now)
{
    const Point block = blockOf(exchange.frame.var);
    const bool good = exchange.outcome == Outcome::Good;
    if (good)
        m_statistics.good(block, exchange.duration(), now);
    else
        m_statistics.fail(block, QLatin1String(ReplyFault::name(exchange.fault.reason)),
                          exchange.outcome == Outcome::Again);
    if (exchange.outcome == Outcome::Again)
        return;
    m_pace.finish(now);
    if (good)
        m_lastGood = block;
    QVector<int> changed =
        good ? m_values.read(block, now) : m_values.giveUp(block, faultsText(exchange.tries));
    for (const int index : m_unproven.toldAgain(m_values.all(), now))
        if (!changed.contains(index))
            changed.append(index);
    reportChanges(changed, now);
    if (m_settings.setAside && m_setAside.take(block, good, now))
        m_registerAgain = true;
}

void Watch::pass(LineTime now)
{
    sampleUntil(now);
    if (now >= m_nextAging && m_pace.cycle() > LineTime(0)) {
        m_nextAging = now + AgeEvery;
        const LineTime cycle = std::max(m_pace.cycle(), m_settings.shortestCycle);
        reportChanges(m_values.age(CyclesUntilStale * cycle, now), now);
    }
    if (m_inFlight)
        return;
    if (m_setAside.tryAgain(now) || m_registerAgain)
        registerPoints(now);
}

QStringList Watch::notGood() const
{
    QStringList reasons;
    QVector<QStringList> names;
    int lastTag = -1;
    for (const WatchedValue &value : m_values.all()) {
        if (value.quality == Quality::Good || value.tag == lastTag)
            continue;
        lastTag = value.tag;
        if (!reasons.contains(value.reason)) {
            reasons.append(value.reason);
            names.append(QStringList());
        }
        names[reasons.indexOf(value.reason)] += m_tags[value.tag].name;
    }
    for (int i = 0; i < int(reasons.size()); ++i)
        reasons[i] += ": "_s + names[i].join(", "_s);
    return reasons;
}

void Watch::registerPoints(LineTime now)
{
    m_registerAgain = false;
    m_pace.start(m_session.monitor(m_setAside.polled()), now);
}

// Between two exchanges nothing changes: a sample that was due during one is that of before.
void Watch::sampleUntil(LineTime now)
{
    if (m_settings.every == LineTime(0))
        return;
    for (; m_nextSample <= now; m_nextSample += m_settings.every)
        m_unproven.sample(m_values.all(), m_nextSample);
    if (!m_settings.provable)
        m_unproven.prove();
}

void Watch::reportChanges(const QVector<int> &which, LineTime now)
{
    if (m_settings.every == LineTime(0))
        m_unproven.change(m_values.all(), which, now);
    if (!m_settings.provable)
        m_unproven.prove();
}

QString Watch::tagsIn(const Point &block)
{
    QStringList names;
    for (const Coverage::Covered &covered : m_values.readBy(block))
        names += m_tags[covered.tag].name;
    return names.join(", "_s);
}

}  // namespace host
