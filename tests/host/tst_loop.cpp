// The loop in simulated time: what its guards let through on bad lines, what a healthy line costs,
// and the words for each failure.
#include "host/exchange/trace.h"
#include "host/watch/line_use.h"
#include "loop_lines.h"

#include <QtTest/QtTest>

using Arrivals = QVector<QVector<QPair<double, QByteArray>>>;

Q_DECLARE_METATYPE(Arrivals)

class TestLoop : public QObject
{
    Q_OBJECT

private slots:
    void nothingOfAnotherAddress_data();
    void nothingOfAnotherAddress();
    void staysInStep_data();
    void staysInStep();
    void acknowledgedIsStored();
    void healthyLine_data();
    void healthyLine();
    void everyFailureHasAName_data();
    void everyFailureHasAName();
    void babblingLineDoesNotStopTheLoop();
    void lostLineKeepsTheRequest();
    void traceShowsWhatWasRefused();

private:
    const Driver m_driver = loadDriver(DRIVER_LIBRARY);
};

void TestLoop::nothingOfAnotherAddress_data()
{
    QTest::addColumn<QByteArray>("faults");
    QTest::addColumn<int>("baud");  // 0: no pace; less: the host does not know it
    QTest::addColumn<int>("wordsPerBlock");
    QTest::addColumn<int>("jitterMs");
    QTest::addColumn<int>("listenMs");

    const QByteArray late = "loss=2%,late=2%:510ms..1500ms";
    const QByteArray all = late + ",double=5%,cut=1%,noise=1%,flip=2%,mute=0.1%:2s";
    QTest::newRow("lost, late and doubled") << late + ",double=5%" << 115200 << 8 << 0 << 0;
    QTest::newRow("in long blocks") << late + ",double=5%" << 115200 << 120 << 0 << 0;
    QTest::newRow("all there is, on a busy machine") << all << 9600 << 8 << 40 << 0;
    QTest::newRow("without a pace") << late << 0 << 8 << 3 << 0;
    QTest::newRow("without a known pace, doubled") << all << -115200 << 8 << 0 << 5;
}

void TestLoop::nothingOfAnotherAddress()
{
    QFETCH(QByteArray, faults);
    QFETCH(int, baud);
    QFETCH(int, wordsPerBlock);
    QFETCH(int, jitterMs);
    QFETCH(int, listenMs);
    VirtualSettings settings = virtualLine(faults.constData(), std::abs(baud));
    settings.paceKnown = baud >= 0;
    settings.lostRequests = 5000;
    settings.jitter = milliseconds(jitterMs);
    LoopSettings loop;
    loop.listenFirst = milliseconds(listenMs);
    Panel panel(m_driver, settings, loop, wordsPerBlock);
    panel.run(20000);
    QCOMPARE(panel.wrongValues, 0);
    QCOMPARE(panel.wrongBits, 0);
    QCOMPARE(panel.wrongAcks, 0);
    QVERIFY(panel.loop.counters().retries > 600 && panel.loop.counters().exchanges > 16000);
}

void TestLoop::staysInStep_data()
{
    QTest::addColumn<QByteArray>("faults");
    QTest::addColumn<int>("standstills");  // of a hundred requests
    QTest::addColumn<int>("delivery");
    QTest::addColumn<int>("turnaroundMs");
    QTest::addColumn<int>("exchanges");
    QTest::addColumn<int>("wrong");   // values at most
    QTest::addColumn<int>("proven");  // of these at most: nothing was too many
    QTest::addColumn<bool>("writes");

    const QByteArray all("double=5%:1ms..20ms,loss=1%,cut=1%,noise=1%,flip=1%,late=2%:510ms..3s");
    const auto row = [](const char *name, const QByteArray &faults, Delivery delivery,
                        int turnaround, int exchanges, int wrong, int proven, bool writes) {
        QTest::newRow(name) << faults << 5 << int(delivery) << turnaround << exchanges << wrong
                            << proven << writes;
    };
    row("copies at once", "double=5%", Delivery::EachByte, 8, 100000, 0, 0, false);
    row("copies at once, a quick controller", "double=5%", Delivery::EachByte, 0, 20000, 0, 0,
        false);
    row("copies of 1 to 20 ms", "double=5%:1ms..20ms", Delivery::EachByte, 30, 20000, 3000, 0,
        true);
    row("copies, over a network", "double=5%:1ms..20ms", Delivery::Network, 8, 20000, 3000, 0,
        true);
    row("all, a quick controller", all, Delivery::EachByte, 0, 20000, 200, 60, true);
    row("all", all, Delivery::EachByte, 8, 20000, 1500, 200, true);
    row("all, through a buffer", all, Delivery::Fifo, 30, 20000, 2500, 200, true);
    row("all, in bundles", all, Delivery::Bundles, 100, 20000, 2500, 200, true);
    row("all, over a network", all, Delivery::Network, 30, 20000, 2500, 200, true);
}

void TestLoop::staysInStep()
{
    QFETCH(int, exchanges);
    QFETCH(int, wrong);
    QFETCH(int, proven);
    QFETCH(bool, writes);
    QFETCH(QByteArray, faults);
    QFETCH(int, standstills);
    QFETCH(int, delivery);
    QFETCH(int, turnaroundMs);
    VirtualSettings settings = virtualLine(faults.constData());
    settings.delivery = Delivery(delivery);
    settings.line.turnaroundMs = turnaroundMs;
    settings.standstills = standstills * 10000;
    Panel panel(m_driver, settings, LoopSettings(), 2);
    panel.writes = writes;
    panel.run(exchanges);
    const LoopCounters &counters = panel.loop.counters();
    if (qEnvironmentVariableIsSet("FIGURES"))
        qInfo(
            "%d wrong, %d old, %d proven, %d times lost, %d unsure, %d wrong acks, %d bits; %d "
            "retries, %d doubted",
            panel.wrongValues, panel.wrongOld, panel.wrongProven, panel.timesLost,
            panel.timesUnsure, panel.wrongAcks, panel.wrongBits, counters.retries,
            counters.doubted);
    QCOMPARE(panel.wrongBits, 0);
    QVERIFY(panel.wrongOld <= (proven > 0 ? 2 : 0));
    QVERIFY(panel.wrongValues <= wrong && panel.wrongProven <= proven);
    QVERIFY(counters.exchanges > exchanges * 9 / 10);
}

// A copy of the acknowledgement before, while the request itself got lost.
void TestLoop::acknowledgedIsStored()
{
    VirtualSettings settings = virtualLine("double=30%");
    settings.lostRequests = 100000;
    settings.standstills = 300000;
    VirtualLine line(settings);
    line.open();
    Session session(m_driver, SessionSettings());
    Loop loop(m_driver, line, LoopSettings());
    int notStored = 0;
    loop.observer = [&](const Exchange &exchange) {
        const VARIABLE &item = exchange.frame.var;
        notStored +=
            exchange.outcome == Outcome::Good && line.memory().word(D, item.startAddr) == 0;
    };
    for (int word = 0; word < 5000; ++word) {
        session.write(words("D_W", word, 1), {1});
        loop.exchange();
    }
    QCOMPARE(notStored, 0);
    QVERIFY(loop.counters().exchanges > 3000);
}

void TestLoop::healthyLine_data()
{
    QTest::addColumn<int>("baud");
    QTest::addColumn<int>("turnaroundMs");
    QTest::addColumn<int>("jitterMs");
    QTest::addColumn<int>("delivery");
    QTest::newRow("at full speed") << 115200 << 0 << 0 << int(Delivery::EachByte);
    QTest::newRow("busy machine") << 115200 << 0 << 20 << 0;
    QTest::newRow("machine that sleeps for longer than the time-out") << 9600 << 100 << 3000 << 0;
    for (const int rate : {300, 9600, 115200})
        for (const int turnaround : {0, 8, 30, 100})
            for (const Delivery delivery : {Delivery::Fifo, Delivery::Bundles, Delivery::Network})
                QTest::addRow("%d baud, %d ms, delivery %d", rate, turnaround, int(delivery))
                    << rate << turnaround << 0 << int(delivery);
    QTest::newRow("no pace") << 0 << 0 << 20 << 0;
}

void TestLoop::healthyLine()
{
    QFETCH(int, baud);
    QFETCH(int, turnaroundMs);
    QFETCH(int, jitterMs);
    QFETCH(int, delivery);
    VirtualSettings settings = virtualLine("", baud);
    settings.line.turnaroundMs = turnaroundMs;
    settings.jitter = milliseconds(jitterMs);
    settings.delivery = Delivery(delivery);
    const int exchanges = delivery == int(Delivery::EachByte) ? 20000 : 2000;
    Panel panel(m_driver, settings, LoopSettings(), 60);
    panel.run(exchanges);
    const LoopCounters counters = panel.loop.counters() - LoopCounters();
    QCOMPARE(counters.exchanges, exchanges);
    QCOMPARE(counters.refused, 0);
    const LineTime travel = panel.line.wireTime(int(counters.bytesSent + counters.bytesReceived));
    if (jitterMs == 0)
        QCOMPARE(counters.doubted, 0);
    if (jitterMs > 0 || exchanges < 20000)
        return;
    QCOMPARE(panel.line.now() / std::chrono::seconds(1), travel / std::chrono::seconds(1));
    const LineUse use(counters, LoopCounters(), 1e-9 * double(panel.line.now().count()),
                      panel.line);
    QCOMPARE(use.shareText(), QString("100.0 % of the line's capacity used"));
    const LineUse inHalfASecond(counters, {}, 0.5, panel.line);
    QCOMPARE(inHalfASecond.exchangesPerSecond(), 40000.0);
    QCOMPARE(inHalfASecond.shareText(), QString("line faster than its settings"));
}

void TestLoop::everyFailureHasAName_data()
{
    QTest::addColumn<Arrivals>("arrivals");
    QTest::addColumn<QStringList>("faults");  // of each exchange
    QTest::addColumn<QStringList>("refused");
    QTest::addColumn<int>("endMs");
    QTest::addColumn<QString>("givenUp");  // "": it was not

    const auto hex = [](const char *text) { return QByteArray::fromHex(text); };
    const QByteArray request = hex("02 72 61 43383030 3030 3034 3732 03");
    const QByteArray reply = hex("06 72 33343132 43444142 3436 04");
    const QByteArray flipped = hex("06 72 33343132 43444143 3436 04");
    const QByteArray other = hex("06 72 30303030 30303030 4632 04");
    const QByteArray longer = hex("06 72 30303030 30303030 30303030 30303030 3732 04");
    const QByteArray acknowledged = hex("06 6F 3646 04");
    const QStringList none;
    const QString silence("no reply within 500 ms");
    const QString early("too early: after 15 ms, when both frames take 26 ms");

    // Both frames take 27 ms; a failed try ends after 527.
    QTest::newRow("late, and the answer to the next try")
        << Arrivals{{{540, reply}}, {{27, reply}}} << QStringList{silence, ""} << none << 540 << "";
    QTest::newRow("lost; before another request, what is owed has its time")
        << Arrivals{{}, {{27, reply}}, {{27, reply}}} << QStringList{silence, "", ""} << none
        << 527 + 27 + 500 + 500 + 27 << "";
    QTest::newRow("late by two tries: those behind it may be as late")
        << Arrivals{{{1081, reply}}, {}, {}, {{27, reply}}} << QStringList{silence, silence, "", ""}
        << none << 1054 + 27 + 1081 + 27 << "";
    QTest::newRow("three times nothing")
        << Arrivals{} << QStringList{silence, silence, silence} << none << 3 * 527
        << "no reply to 3 requests of 500 ms each";
    QTest::newRow("early, then the answer") << Arrivals{{{15, reply}, {28, reply}}}
                                            << QStringList{""} << QStringList{early} << 28 << "";
    QTest::newRow("early, and no answer")
        << Arrivals{{{15, reply}}, {{27, reply}}} << QStringList{early, ""} << QStringList{early}
        << 527 + 27 << "";
    QTest::newRow("early and longer, then the answer")
        << Arrivals{{{10, longer.left(13)}, {18, longer.mid(13)}, {31, reply}}} << QStringList{""}
        << QStringList{"too early: after 10 ms, when both frames take 26 ms"} << 31 << "";
    QTest::newRow("a shorter one first")
        << Arrivals{{{20, acknowledged}, {27, reply}}} << QStringList{""}
        << QStringList{"too short: 5 bytes instead of 13"} << 27 << "";
    QTest::newRow("cut") << Arrivals{{{20, reply.left(5)}}, {{27, reply}}}
                         << QStringList{"too short: 5 bytes instead of 13", ""} << none
                         << 527 + 500 + 27 << "";
    QTest::newRow("cut, and its rest comes late")
        << Arrivals{{{20, reply.left(5)}, {900, reply.mid(5)}}, {{27, reply}}}
        << QStringList{"too short: 5 bytes instead of 13", ""} << none << 900 + 500 + 27 << "";
    QTest::newRow("more behind it")
        << Arrivals{{{45, reply + reply}}} << QStringList{""} << none << 45 << "";
    QTest::newRow("another behind it, that may be the answer")
        << Arrivals{{{45, reply + other}}, {{27, reply}}}
        << QStringList{"several replies that differ: nothing tells which is the answer", ""} << none
        << 45 + 500 + 27 << "";
    QTest::newRow("data that is no hex")
        << Arrivals{{{27, hex("06 72 33343132 43445A42 3546 04")}}, {{27, reply}}}
        << QStringList{"data that is no hex: byte 5A", ""} << none << 27 + 500 + 27 << "";
    QTest::newRow("more before it, faster than the line can carry both")
        << Arrivals{{{27, reply + reply}}} << QStringList{""}
        << QStringList{"too early: after 27 ms, when both frames take 38 ms"} << 27 << "";
    QTest::newRow("a bit turned") << Arrivals{{{27, flipped}}, {{27, reply}}}
                                  << QStringList{"wrong checksum: 46 instead of 47", ""} << none
                                  << 27 + 500 + 27 << "";
    QTest::newRow("noise before it")
        << Arrivals{{{27, "zz" + reply}}} << QStringList{"not a reply: first byte 7A instead of 06"}
        << none << 27 << "";
    QTest::newRow("one stray byte")
        << Arrivals{{{27, "z"}}} << QStringList{"not a reply: first byte 7A instead of 06"} << none
        << 527 << "";
    QTest::newRow("no end") << Arrivals{{{27, reply.left(12) + 'z'}}}
                            << QStringList{"not a reply: last byte 7A instead of 04"} << none
                            << 27 + 100 << "";
    QTest::newRow("echo") << Arrivals{{{14, request}}} << QStringList{"the request's own echo"}
                          << none << 14 << "";
    const QString own("the request's own echo");
    QTest::newRow("three echoes") << Arrivals{{{14, request}}, {{14, request}}, {{14, request}}}
                                  << QStringList{own, own, own} << none << 14 + 500 + 14 + 500 + 14
                                  << "3 requests: the request's own echo (see to the wiring: what "
                                     "is sent comes straight back)";
    QTest::newRow("three failures of three kinds")
        << Arrivals{{}, {{20, reply.left(5)}}, {{27, flipped}}}
        << QStringList{silence, "too short: 5 bytes instead of 13",
                       "wrong checksum: 46 instead of 47"}
        << none << 527 + 527 + 500 + 27
        << silence +
               "; then too short: 5 bytes instead of 13; then wrong checksum: 46 instead of 47";
}

void TestLoop::everyFailureHasAName()
{
    QFETCH(Arrivals, arrivals);
    QFETCH(QStringList, faults);
    ScriptedLine line;
    line.arrivals = arrivals;
    Session session(m_driver, SessionSettings());
    session.monitor({words("D_W", 100, 2), words("D_W", 1000, 2)});
    Loop loop(m_driver, line, LoopSettings());
    QStringList said;
    QStringList refused;
    QString givenUp;
    loop.observer = [&](const Exchange &exchange) {
        said.append(exchange.fault.text());
        for (const RefusedReply &reply : exchange.refused)
            refused.append(reply.fault.text());
        QCOMPARE(exchange.outcome == Outcome::Good, exchange.fault.text().isEmpty());
        givenUp = exchange.outcome == Outcome::GivenUp ? faultsText(exchange.tries) : "";
    };
    for (int i = 0; i < faults.size(); ++i)
        loop.exchange();
    QCOMPARE(said, faults);
    QTEST(refused, "refused");
    QTEST(givenUp, "givenUp");
    QTEST(int(line.now() / milliseconds(1)), "endMs");
}

void TestLoop::babblingLineDoesNotStopTheLoop()
{
    ScriptedLine line;
    line.babbles = true;
    Session session(m_driver, SessionSettings());
    session.monitor({words("D_W", 100, 2)});
    Loop loop(m_driver, line, LoopSettings());
    QCOMPARE(loop.exchange(), Outcome::Again);
    QCOMPARE(loop.exchange(), Outcome::Again);
}

void TestLoop::lostLineKeepsTheRequest()
{
    VirtualLine line(virtualLine());
    line.open();
    Session session(m_driver, SessionSettings());
    session.readOnce(words("D_W", 100, 2));
    session.readOnce(words("D_W", 200, 2));
    Loop loop(m_driver, line, LoopSettings());
    int asked = 0;
    loop.observer = [&](const Exchange &) { ++asked; };
    line.controller().setObserver([&](const auto &...) { line.unplug(); });
    QCOMPARE(loop.exchange(), Outcome::LineLost);
    line.controller().setObserver(nullptr);
    line.plugIn();
    QVERIFY(line.open() && !line.receive(milliseconds(500)).isEmpty());
    line.suspend();
    QCOMPARE(loop.exchange(), Outcome::Again);
    line.unplug();
    QCOMPARE(loop.exchange(), Outcome::LineLost);
    QCOMPARE(asked, 2);
    QVERIFY(!line.open());
    line.plugIn();
    line.resume();
    QVERIFY(line.open());
    const LineTime back = line.now();
    QCOMPARE(loop.exchange(), Outcome::Good);
    QCOMPARE(loop.exchange(), Outcome::Good);
    QVERIFY(line.now() - back >= milliseconds(500));  // what it owes is waited for
}

void TestLoop::traceShowsWhatWasRefused()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("trace");
    Trace trace(path);
    VirtualLine line(virtualLine("double=100%"));
    line.open();
    Session session(m_driver, SessionSettings());
    session.monitor({words("D_W", 0, 1), words("D_W", 1000, 1)});
    Loop loop(m_driver, line, LoopSettings());
    loop.observer = [&](const Exchange &exchange) { trace.write(exchange); };
    loop.exchange();
    loop.exchange();

    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList told;
    QVector<QTime> times;
    for (const QByteArray &text : file.readAll().split('\n')) {
        times.append(QTime::fromString(QString(text).section('T', 1).left(12), "hh:mm:ss.zzz"));
        told.append(QString(text).section("  ", 1, 1) + QString(text).section("  ", 3));
    }
    QCOMPARE(times[0].msecsTo(times[1]), 1);  // 1.996 ms
    QCOMPARE(told.size(), 6);
    QCOMPARE(told.mid(0, 3), (QStringList{"->read 1 word of D from word 0", "<-1 word: 0",
                                          "->read 1 word of D from word 1000"}));
    QVERIFY2(told[3].startsWith("<-refused: too early: after 0.8 ms, when"), qPrintable(told[3]));
    QCOMPARE(told[4], QString("<-1 word: 0"));
}

QTEST_GUILESS_MAIN(TestLoop)
#include "tst_loop.moc"
