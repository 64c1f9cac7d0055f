// The steps of the tour that identify, check and read.
#include "host/output/failure.h"
#include "host/tour/tour.h"
#include "plc/memory.h"

#include <QtCore/QSet>

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
    return texts.join(", "_s);
}

QString verdictOn(const Tour &tour, const char *address)
{
    try {
        return "address number %1"_s.arg(tour.point(address).address);
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
    tour.begin("Who is there"_s,
               "The driver names itself, its default line and its register types."_s, 0);
    const Identity &identity = tour.identity;
    tour.report.item("driver"_s, identity.name + QLatin1Char(' ') + identity.version);
    tour.report.item("line"_s, identity.serialLine);
    tour.report.item("network"_s, identity.networkLine);
    tour.report.item("words"_s, "up to "_s + typesText(identity, false));
    tour.report.item("bits"_s, "up to "_s + typesText(identity, true));
    tour.report.check("it is the driver that this host is made for"_s, identity.name,
                      "tolvane_link"_s);
    QSet<QString> areas;
    for (const auto &type : identity.types)
        areas.insert(type.name.section('_', 0, 0));
    tour.report.check("register types for all devices of the controller"_s, int(areas.size()),
                      int(plc::Memory::devices().size()));
}

void checkAddresses(Tour &tour)
{
    tour.begin("Checking addresses"_s,
               "Nothing is sent for an address that the controller does not have."_s, 0);
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
    tour.begin("Registering what a screen shows"_s,
               "Five points become three requests: close addresses share one, and "
               "bits come in their word."_s,
               3);
    tour.prepare(tour.point("D_W:300x3"), {10, 20, 30});
    tour.prepare(tour.point("M_W:3"), {0x0C0F});
    const QVector<Point> points = {tour.point("D_W:100x2"), tour.point("D_W:110"),
                                   tour.point("D_W:300x3"), tour.point("M_bit:0.0x4"),
                                   tour.point("M_W:3")};
    const int requests = tour.session.monitor(points);
    tour.run(requests);
    tour.report.check("3 requests planned"_s, requests, 3);
    for (const char *word : {"D_W:100", "D_W:300", "M_W:3"}) {
        const Point point = tour.point(word);
        tour.report.check("%1 is what the reply carried"_s.arg(QLatin1String(word)),
                          tour.session.values(point).first(),
                          tour.wordOnTheWire(point.regName, point.address));
    }
}

void pollForChanges(Tour &tour)
{
    tour.begin("Polling"_s,
               "The requests go round; the driver reports what has changed. The "
               "first three of each point:"_s,
               0);
    const bool moved = tour.loop.runUntil(
        [&] { return reportsOf(tour, "D_W", 100) >= 3 && reportsOf(tour, "M_bit", 0) >= 1; },
        seconds(10));
    tour.report.item(
        "in all"_s,
        "%1 exchanges, %2 reports"_s.arg(tour.exchanges.size()).arg(tour.changes.size()));
    tour.report.check("the counter D_W:100 and the bit M_bit:0.0 were seen moving"_s, moved, true);
    tour.report.check(
        "nothing was reported that had not changed"_s,
        std::all_of(tour.changes.cbegin(), tour.changes.cend(),
                    [](const Change &change) { return change.before != change.after; }),
        true);
    const Point counter = tour.point("D_W:100");
    tour.report.check("D_W:100 is what the latest reply carried"_s,
                      tour.session.values(counter).first(),
                      tour.wordOnTheWire(counter.regName, counter.address));
}

void readOnCondition(Tour &tour)
{
    tour.begin("Reading once, on demand"_s,
               "200 words exceed the block limit of 64: four requests, and one "
               "notice at the end."_s,
               2);
    const Point point = tour.point("D_W:300x200");
    QVector<int> pattern;
    for (int i = 0; i < point.count; ++i)
        pattern.append(3 * i);
    tour.prepare(point, pattern);

    tour.session.readOnce(point);
    tour.finish();
    tour.show("read", point);
    tour.report.check("4 requests"_s, tour.seen(Outcome::Good), 4);
    tour.report.check("one notice: done"_s, tour.conditionReadEnds == QVector<bool>{true}, true);
    tour.report.check("the values are those written there before"_s, tour.session.values(point),
                      pattern);
}

void loseReplies(Tour &tour)
{
    tour.begin("A controller that falls silent, and returns"_s,
               "Its late replies answer requests that were given up; none of them "
               "may be taken for a new one's."_s,
               5);
    const Point point = tour.point("D_W:100x2");
    tour.session.restart();
    tour.session.monitor({point});
    tour.line.suspend();
    tour.loop.runUntil([&] { return tour.seen(Outcome::GivenUp) > 0; }, seconds(10));
    tour.report.check("sent again twice, as the retry limit of 3 says"_s, tour.seen(Outcome::Again),
                      2);
    tour.report.check("then given up, with the text for the operator"_s,
                      tour.exchanges.isEmpty() ? QString() : tour.exchanges.last().errorText,
                      "1#D_W100(2)(0)"_s);

    const Point other = tour.point("D_W:300x2");
    tour.session.monitor({other});
    tour.line.resume();
    tour.run(1);
    const Exchange &last = tour.exchanges.constLast();
    tour.report.item("silence"_s,
                     "%1 bytes that came meanwhile were thrown away"_s.arg(last.stale.size()));
    tour.report.check("the late replies were thrown away"_s, !last.stale.isEmpty(), true);
    tour.report.check("the next request has its own reply"_s, tour.session.values(other),
                      QVector<int>{0, 3});
}

void runAtFullSpeed(Tour &tour)
{
    tour.begin("Full speed"_s, "1000 words round and round for two seconds, 127 to a request."_s,
               1);
    SessionSettings settings;
    settings.blockLimit = 127;
    tour.session.restart(settings);
    const int requests = tour.session.monitor({tour.point("D_W:1000x1000")});

    const LoopCounters before = tour.loop.counters();
    const LineTime start = tour.line.now();
    tour.loop.runUntil([] { return false; }, seconds(2));
    const double elapsed = double((tour.line.now() - start).count()) / 1e9;
    const LoopCounters counted = tour.loop.counters() - before;

    tour.report.check("8 requests planned"_s, requests, 8);
    tour.report.check("no request was given up"_s, counted.errors, 0);
    tour.report.line();
    const double wireSeconds =
        double(tour.line.wireTime(int(counted.bytesSent + counted.bytesReceived)).count()) / 1e9;
    QStringList fullSpeed = countersRow("full speed", counted);
    fullSpeed << QString::number(double(counted.wordsRead) / elapsed, 'f', 0)
              << "%1 %"_s.arg(100 * wireSeconds / elapsed, 0, 'f', 1);
    tour.report.table(
        {QStringList{QString(), "exchanges"_s, "retries"_s, "errors"_s, "words/s"_s, "line used"_s},
         fullSpeed, countersRow("whole tour", tour.loop.counters())});
    tour.report.line(
        "(of what %1 can carry, start and stop bits included)"_s.arg(tour.identity.serialLine));
}

}  // namespace host
