// The steps of the tour that identify, check and read.
#include "host/demo/tour.h"
#include "host/failure.h"

#include <algorithm>

namespace host {

using std::chrono::seconds;

namespace {

QString typesText(const Identity &identity, bool isBit)
{
    QStringList texts;
    for (const RegisterType &type : identity.types)
        if (type.isBit == isBit)
            texts.append(type.name + QLatin1Char(':') + type.lastAddress);
    return texts.join(QLatin1String(", "));
}

QString verdictOn(const Tour &tour, const char *address)
{
    try {
        return QStringLiteral("address number %1").arg(tour.point(address).address);
    } catch (const Failure &refusal) {
        return QString::fromUtf8(refusal.what());
    }
}

int reportsOf(const Tour &tour, const char *regName, int address)
{
    return int(std::count_if(tour.changes.cbegin(), tour.changes.cend(), [&](const Change &change) {
        return change.point.regName == QLatin1String(regName) && change.point.address == address &&
               change.before != change.after;
    }));
}

QStringList countersRow(const char *name, const LoopCounters &counters)
{
    return {QLatin1String(name), QString::number(counters.exchanges),
            QString::number(counters.retries), QString::number(counters.errors)};
}

}  // namespace

void identifyDriver(Tour &tour)
{
    tour.begin(QStringLiteral("Who is there"),
               QStringLiteral("The driver names itself, its default line and its register types."),
               0);
    const Identity &identity = tour.identity;
    tour.report.item(QStringLiteral("driver"), identity.name + QLatin1Char(' ') + identity.version);
    tour.report.item(QStringLiteral("line"), identity.serialLine);
    tour.report.item(QStringLiteral("network"), identity.networkLine);
    tour.report.item(QStringLiteral("words"), QLatin1String("up to ") + typesText(identity, false));
    tour.report.item(QStringLiteral("bits"), QLatin1String("up to ") + typesText(identity, true));
    tour.report.check(QStringLiteral("it is the driver that this host is made for"), identity.name,
                      QStringLiteral("tolvane_link"));
    tour.report.check(QStringLiteral("18 register types, with their last addresses"),
                      int(identity.types.size()), 18);
}

void checkAddresses(Tour &tour)
{
    tour.begin(QStringLiteral("Checking addresses"),
               QStringLiteral("Nothing is sent for an address that the controller does not have."),
               0);
    struct Case
    {
        const char *address;
        const char *verdict;
    };
    const Case cases[] = {
        {"D_W:100", "address number 100"},
        {"M_bit:20.5", "address number 325"},
        {"TX:35", "address number 35"},
        {"D_W:32767x2", "address \"D_W:32767x2\": outside D_W, which reaches from 0 to 32767"},
        {"M_bit:20.16",
         "address \"M_bit:20.16\": \"20.16\" is no address of the form DDDD.DD, with a bit from 0 "
         "to 15"},
    };
    for (const Case &row : cases) {
        const QString verdict = verdictOn(tour, row.address);
        tour.report.check(QString::fromLatin1(row.address).leftJustified(12) + verdict, verdict,
                          QString::fromLatin1(row.verdict));
    }
}

void monitorPoints(Tour &tour)
{
    tour.begin(QStringLiteral("Registering what a screen shows"),
               QStringLiteral("Five points become three requests: close addresses share one, and "
                              "bits come in their word."),
               3);
    tour.prepare(tour.point("D_W:300x3"), {10, 20, 30});
    tour.prepare(tour.point("M_W:3"), {0x0C0F});
    const QVector<Point> points = {tour.point("D_W:100x2"), tour.point("D_W:110"),
                                   tour.point("D_W:300x3"), tour.point("M_bit:0.0x4"),
                                   tour.point("M_W:3")};
    const int requests = tour.session.monitor(points);
    tour.run(requests);
    tour.report.check(QStringLiteral("3 requests planned"), requests, 3);
    for (const char *word : {"D_W:100", "D_W:300", "M_W:3"}) {
        const Point point = tour.point(word);
        tour.report.check(QStringLiteral("%1 is what the reply carried").arg(QLatin1String(word)),
                          tour.session.values(point).first(),
                          tour.wordOnTheWire(point.regName, point.address));
    }
}

void pollForChanges(Tour &tour)
{
    tour.begin(QStringLiteral("Polling"),
               QStringLiteral("The requests go round; the driver reports what has changed. The "
                              "first three of each point:"),
               0);
    const bool moved = tour.loop.runUntil(
        [&] { return reportsOf(tour, "D_W", 100) >= 3 && reportsOf(tour, "M_bit", 0) >= 1; },
        seconds(10));
    tour.report.item(QStringLiteral("in all"), QStringLiteral("%1 exchanges, %2 reports")
                                                   .arg(tour.exchanges.size())
                                                   .arg(tour.changes.size()));
    tour.report.check(QStringLiteral("the counter D_W:100 and the bit M_bit:0.0 were seen moving"),
                      moved, true);
    tour.report.check(
        QStringLiteral("nothing was reported that had not changed"),
        std::all_of(tour.changes.cbegin(), tour.changes.cend(),
                    [](const Change &change) { return change.before != change.after; }),
        true);
    const Point counter = tour.point("D_W:100");
    tour.report.check(QStringLiteral("D_W:100 is what the latest reply carried"),
                      tour.session.values(counter).first(),
                      tour.wordOnTheWire(counter.regName, counter.address));
}

void readOnCondition(Tour &tour)
{
    tour.begin(QStringLiteral("Reading once, on demand"),
               QStringLiteral("200 words exceed the block limit of 64: four requests, and one "
                              "notice at the end."),
               2);
    const Point point = tour.point("D_W:300x200");
    QVector<int> pattern;
    for (int i = 0; i < point.count; ++i)
        pattern.append(3 * i);
    tour.prepare(point, pattern);

    tour.session.readOnce(point);
    tour.finish();
    tour.show("read", point);
    tour.report.check(QStringLiteral("4 requests"), tour.seen(Outcome::Good), 4);
    tour.report.check(QStringLiteral("one notice: done"),
                      tour.conditionReadEnds == QVector<bool>{true}, true);
    tour.report.check(QStringLiteral("the values are those written there before"),
                      tour.session.values(point), pattern);
}

void loseReplies(Tour &tour)
{
    tour.begin(QStringLiteral("A controller that falls silent, and returns"),
               QStringLiteral("Its late replies answer requests that were given up; none of them "
                              "may be taken for a new one's."),
               5);
    const Point point = tour.point("D_W:100x2");
    tour.session.restart();
    tour.session.monitor({point});
    tour.line.suspend();
    tour.loop.runUntil([&] { return tour.seen(Outcome::GivenUp) > 0; }, seconds(10));
    tour.report.check(QStringLiteral("sent again twice, as the retry limit of 3 says"),
                      tour.seen(Outcome::Again), 2);
    tour.report.check(QStringLiteral("then given up, with the text for the operator"),
                      tour.exchanges.isEmpty() ? QString() : tour.exchanges.last().errorText,
                      QStringLiteral("1#D_W100(2)(0)"));

    const Point other = tour.point("D_W:300x2");
    tour.session.monitor({other});
    tour.line.resume();
    tour.run(1);
    const Exchange &last = tour.exchanges.constLast();
    tour.report.item(
        QStringLiteral("silence"),
        QStringLiteral("%1 bytes that came meanwhile were thrown away").arg(last.stale.size()));
    tour.report.check(QStringLiteral("the late replies were thrown away"), !last.stale.isEmpty(),
                      true);
    tour.report.check(QStringLiteral("the next request has its own reply"),
                      tour.session.values(other), QVector<int>{0, 3});
}

void runAtFullSpeed(Tour &tour)
{
    tour.begin(QStringLiteral("Full speed"),
               QStringLiteral("1000 words round and round for two seconds, 127 to a request."), 1);
    SessionSettings settings;
    settings.blockLimit = 127;
    tour.session.restart(settings);
    const int requests = tour.session.monitor({tour.point("D_W:1000x1000")});

    const LoopCounters before = tour.loop.counters();
    const LineTime start = tour.line.now();
    tour.loop.runUntil([] { return false; }, seconds(2));
    const double elapsed = double((tour.line.now() - start).count()) / 1e9;
    const LoopCounters counted = tour.loop.counters() - before;

    tour.report.check(QStringLiteral("8 requests planned"), requests, 8);
    tour.report.check(QStringLiteral("no request was given up"), counted.errors, 0);
    tour.report.line();
    const double wireSeconds =
        double(tour.line.wireTime(int(counted.bytesSent + counted.bytesReceived)).count()) / 1e9;
    QStringList fullSpeed = countersRow("full speed", counted);
    fullSpeed << QString::number(double(counted.wordsRead) / elapsed, 'f', 0)
              << QStringLiteral("%1 %").arg(100 * wireSeconds / elapsed, 0, 'f', 1);
    tour.report.table({QStringList{QString(), QStringLiteral("exchanges"),
                                   QStringLiteral("retries"), QStringLiteral("errors"),
                                   QStringLiteral("words/s"), QStringLiteral("line used")},
                       fullSpeed, countersRow("whole tour", tour.loop.counters())});
    tour.report.line(QStringLiteral("(of what %1 can carry, start and stop bits included)")
                         .arg(tour.identity.serialLine));
}

}  // namespace host
