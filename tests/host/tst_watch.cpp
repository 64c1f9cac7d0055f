// Watching in simulated time: what becomes of values, counts and logs when the line misbehaves.
#include "host/line/virtual_line.h"
#include "host/watch/watch.h"

#include <QtCore/QJsonArray>
#include <QtTest/QtTest>

#include <numeric>

using namespace host;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

// Three blocks, for they lie further apart than one spans: a and f, b, c.
const QStringList Tags = {"a=D_W:100", "f=D_W:101:float", "b=D_W:500", "c=D_W:900:hex"};

const Point BlockOfA{1, "D_W", 100, 3, false};

/** A line on which one address is not answered for a while. */
class LineWithDeadAddress : public VirtualLine
{
public:
    using VirtualLine::VirtualLine;

    bool send(const QByteArray &bytes) override
    {
        const bool swallowed = dead && bytes.contains("raE803");  // read D from byte 1000: word 500
        return swallowed ? isOpen() : VirtualLine::send(bytes);
    }

    bool dead = false;
};

using Action = std::function<void(LineWithDeadAddress &)>;

/** A watch of the tags, with what is done to its line at which second. */
struct Story
{
    explicit Story(const WatchSettings &settings = WatchSettings())
        : driver(loadDriver(DRIVER_LIBRARY)),
          session(driver, SessionSettings()),
          line(stillLine()),
          loop(driver, line, LoopSettings()),
          watch(driver, session, parseTags(driver, Tags), withFloor(settings))
    {
        for (const auto &[word, value] : {std::pair(100, 7), {102, 0x3FC0}, {500, 5}, {900, 9}})
            line.memory().setWord('a', word, quint16(value));
        watch.report = [this](const QVector<WatchedValue> &values, LineTime at) {
            for (const WatchedValue &value : values) {
                const auto second = std::chrono::duration_cast<seconds>(at).count();
                events[QStringLiteral("%1 s %2").arg(second, 2).arg(qualityText(value.quality))] +=
                    value.name;
                if (value.quality != Quality::Bad)
                    texts.insert(value.name + QLatin1Char('=') + value.text);
            }
        };
        watch.say = loop.say = [this](const QString &text) { said += text; };
        loop.observer = [this](const Exchange &exchange) { watch.take(exchange, line.now()); };
        watch.wantedWords = [this] { return loop.wantedWords(); };
        line.open();
    }

    static VirtualSettings stillLine()
    {
        VirtualSettings settings;
        settings.line.baud = 115200;
        settings.moving = false;
        return settings;
    }

    static WatchSettings withFloor(WatchSettings settings)
    {
        settings.shortestCycle = SessionSettings().retryLimit * LoopSettings().replyTimeout;
        return settings;
    }

    void run(int length, QMap<int, Action> actions = {})
    {
        const auto step = [this] { return loop.step(); };
        const auto act = [&] {
            while (!actions.isEmpty() && line.now() >= seconds(actions.firstKey()))
                actions.take(actions.firstKey())(line);
            return true;
        };
        watch.run(line, step, seconds(length), act);
    }

    Driver driver;
    Session session;
    LineWithDeadAddress line;
    Loop loop;
    Watch watch;
    QMap<QString, QString> events;  // names by second and quality
    QSet<QString> texts;            // name=value, of all that were not bad
    QStringList said;
};

const Action Unplug = &VirtualLine::unplug;
const Action PlugIn = &VirtualLine::plugIn;
const Action Suspend = &VirtualLine::suspend;
const Action Resume = &VirtualLine::resume;
const Action Die = [](auto &line) { line.dead = true; };
const Action Revive = [](auto &line) { line.dead = false; };

using Actions = QMap<int, Action>;

}  // namespace

Q_DECLARE_METATYPE(Actions)

class TestWatch : public QObject
{
    Q_OBJECT

private slots:
    void qualities_data();
    void qualities();
    void deadAddressDoesNotSlowTheOthers();
    void samplesAndPace_data();
    void samplesAndPace();
};

void TestWatch::qualities_data()
{
    QTest::addColumn<Actions>("actions");
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<QString>("notGood");
    const QString start = " 0 s good: afbc";
    QTest::newRow("a lost line makes all bad at once, and is back")
        << Actions{{3, Unplug}, {6, PlugIn}}
        << QStringList{start, " 3 s bad: afbc", " 6 s good: cafb"} << "";
    QTest::newRow("gone for long: tried after 1, 3, 7, 15, 31, 61 and 91 s")
        << Actions{{3, Unplug}, {65, PlugIn}}
        << QStringList{start, " 3 s bad: afbc", "94 s good: cafb"} << "";
    QTest::newRow("a silent controller, block by block")
        << Actions{{3, Suspend}}
        << QStringList{start, " 4 s bad: c", " 6 s bad: af", " 8 s bad: b", " 8 s stale: b"}
        << "no reply to 3 requests of 500 ms each: a, f, b, c";
    QTest::newRow("a dead address") << Actions{{3, Die}, {9, Revive}}
                                    << QStringList{start, " 4 s bad: b", "18 s good: b"} << "";
    QTest::newRow("a dead address from the start")
        << Actions{{0, Die}} << QStringList{" 0 s good: af", " 1 s bad: b", " 2 s good: c"}
        << "no reply to 3 requests of 500 ms each: b";
}

void TestWatch::qualities()
{
    QFETCH(Actions, actions);
    Story story;
    story.run(120, actions);
    QStringList events;
    for (auto event = story.events.cbegin(); event != story.events.cend(); ++event)
        events += event.key() + ": " + event.value();
    QTEST(events, "events");
    QTEST(story.watch.notGood().join("; "), "notGood");
    story.texts.remove("b=5");  // which may never be read
    QCOMPARE(story.texts, (QSet<QString>{"a=7", "f=1.5", "c=0x0009"}));
}

void TestWatch::deadAddressDoesNotSlowTheOthers()
{
    // Exchanges of the tag a, in a minute in which b does not answer, and in a healthy one.
    const auto reads = [](bool setAside, const Actions &actions, QString *told = nullptr) {
        WatchSettings settings;
        settings.setAside = setAside;
        Story story(settings);
        story.run(60, actions);
        if (told) {
            QTextStream out(told);
            out << story.said.join('\n') << '\n';
            story.watch.statistics().print(out, story.line.now());
            const QJsonArray blocks =
                story.watch.statistics().object(story.line.now())["blocks"].toArray();
            out << qRound(10 * blocks[0].toObject()["roundTripMs"].toObject()["mean"].toDouble());
        }
        return story.watch.statistics().of(BlockOfA).exchanges;
    };
    QString told;
    const int healthy = reads(true, {});
    const int slowed = reads(false, {{0, Die}});
    const int protectedOnes = reads(true, {{0, Die}, {30, Revive}}, &told);
    QVERIFY(slowed < healthy / 10);
    QVERIFY(protectedOnes > healthy / 2);
    QCOMPARE(told,
             QString(R"(D_W:500 (b) was given up three times in a row; it is tried again every 10 s
D_W:500 (b) answers again
block      good  retries  errors  last good  min  mean  max ms  failures
D_W:100x3  9294        0       0  0.0 s ago  2.7   2.7     2.7
D_W:500    3208       10       5  0.0 s ago  2.0   2.0     2.0  no-reply 15
D_W:900    9288        0       0  0.0 s ago  2.0   2.0     2.0
27)"));
}

void TestWatch::samplesAndPace_data()
{
    QTest::addColumn<int>("pollMs");
    QTest::addColumn<int>("everyMs");
    QTest::addColumn<Actions>("actions");
    QTest::addColumn<int>("cycles");   // 0: as many as the line can carry; -1: whatever
    QTest::addColumn<int>("reports");  // of the value a
    QTest::addColumn<int>("changes");  // of its text
    QTest::newRow("a cycle a second") << 1000 << 0 << Actions() << 10 << 1 << 0;
    QTest::newRow("four samples a second") << 0 << 250 << Actions() << 0 << 40 << 39;
    QTest::newRow("samples go on while a request is repeated")
        << 500 << 100 << Actions{{3, Suspend}, {7, Resume}} << -1 << 100 << 6;
}

void TestWatch::samplesAndPace()
{
    QFETCH(int, pollMs);
    QFETCH(int, everyMs);
    QFETCH(Actions, actions);
    QFETCH(int, cycles);
    QFETCH(int, reports);
    WatchSettings settings;
    settings.poll = milliseconds(pollMs);
    settings.every = milliseconds(everyMs);
    Story story(settings);
    int times = 0;
    LineTime last(0);
    story.watch.report = [&](const QVector<WatchedValue> &values, LineTime at) {
        times += values.first().name == "a";
        if (everyMs == 0)
            return;
        // A sample is of its time, though the next value may have come before it was taken.
        QVERIFY(at - last == settings.every && values.first().changedAt <= at);
        story.line.memory().setWord('a', 100, quint16(times));
        last = at;
    };
    story.run(10, actions);
    QCOMPARE(times, reports);
    const ExchangeStatistics &a = story.watch.statistics().of(BlockOfA);
    if (cycles > 0)
        QCOMPARE(a.exchanges, cycles);
    if (cycles == 0)
        QVERIFY(a.exchanges > 500);
    QTEST(story.watch.values().all()[0].changes, "changes");
    const ExchangeStatistics &all = story.watch.statistics().all();
    const int proofs = story.loop.counters().exchanges - all.exchanges;
    QVERIFY2(proofs >= 0 && proofs <= 12, qPrintable(QString::number(proofs)));
    const QList<int> failures = all.failures.values();
    QCOMPARE(all.retries + all.givenUp, std::accumulate(failures.cbegin(), failures.cend(), 0));
    for (int i = 0; i < 50; ++i)
        story.watch.values().sample();
    QCOMPARE(story.watch.values().all().last().trend, QVector<double>(16, 9));
    QVERIFY(a.shortest > LineTime(0) && a.shortest <= a.mean() && a.mean() <= a.longest);
}

QTEST_GUILESS_MAIN(TestWatch)
#include "tst_watch.moc"
