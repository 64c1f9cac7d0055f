// The parts of watching that need no line: which blocks are set aside, how the table fits, and logs
// that are gone on with.
#include "host/line/virtual_line.h"
#include "host/output/failure.h"
#include "host/output/output_file.h"
#include "host/watch/line_use.h"
#include "host/watch/set_aside.h"
#include "host/watch/sinks/screen.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace host;
using std::chrono::seconds;

class TestWatchParts : public QObject
{
    Q_OBJECT

private slots:
    void onlyDeadBlocksAreSetAside();
    void tableFits_data();
    void tableFits();
    void useOfTheLine();
    void logsGoOn_data();
    void logsGoOn();
};

void TestWatchParts::onlyDeadBlocksAreSetAside()
{
    const auto d = [](int word, int count) { return Point{1, "D_W", word, count, false}; };
    SetAside aside({d(100, 300)});  // in blocks of 127, 127 and 46 words
    QStringList news;
    aside.gone = [&](const Point &block) { news += QString("%1 gone").arg(block.address); };
    aside.back = [&](const Point &block) { news += QString("%1 back").arg(block.address); };
    const auto polled = [&] {
        QString text;
        for (const Point &point : aside.polled())
            text += QString("%1x%2 ").arg(point.address).arg(point.count);
        return text;
    };
    const auto fail = [&](const Point &block, int times, int second) {
        bool changed = false;
        for (int i = 0; i < times; ++i) {
            aside.take(d(100, 127), true, seconds(second));
            changed = aside.take(block, false, seconds(second));
        }
        return changed;
    };
    QVERIFY(!fail(d(227, 127), 2, 0) && !aside.lineLost() && !fail(d(227, 127), 2, 0));
    QVERIFY(!aside.take(d(227, 127), true, seconds(0)) && !fail(d(354, 46), 2, 0));
    QCOMPARE(polled(), QString("100x300 "));
    QVERIFY(fail(d(227, 127), 3, 1) && fail(d(354, 46), 1, 4));
    QCOMPARE(polled(), QString("100x127 "));
    QVERIFY(!aside.tryAgain(seconds(10)) && aside.tryAgain(seconds(11)));
    QCOMPARE(polled(), QString("100x254 "));
    QVERIFY(!aside.tryAgain(seconds(14)));  // one at a time
    QVERIFY(aside.take(d(227, 127), false, seconds(13)));
    QVERIFY(!aside.tryAgain(seconds(18)) &&
            aside.tryAgain(seconds(19)));  // rests three times as long as it took
    QVERIFY(!aside.take(d(354, 46), true, seconds(19)));
    QCOMPARE(polled(), QString("100x127 354x46 "));
    QVERIFY(aside.tryAgain(seconds(23)) && aside.take(d(227, 127), false, seconds(27)));
    QVERIFY(aside.lineLost());
    QCOMPARE(polled(), QString("100x300 "));
    QVERIFY(fail(d(354, 46), 3, 28) && aside.tryAgain(seconds(38)));  // no rest is left
    QCOMPARE(news, (QStringList{"227 gone", "354 gone", "354 back", "354 gone"}));
}

void TestWatchParts::tableFits_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("table");  // "|" at the end of a grey line
    QTest::newRow("all of it") << 10 << 99 << R"(
name                    address     value  trend             changes              changed     read
the filler's long name  D_W:100         7  ▁▂▃▄█                  12                5.0 s    1 min
                        D_W:500         5  no reply to 3 requests of 500 ms each    5.0 s      1 h|)";
    QTest::newRow("narrow: names give way") << 10 << 60 << R"(
name    address     value  changes          changed     read
the f…  D_W:100         7       12            5.0 s    1 min
        D_W:500         5  no reply to 3 …    5.0 s      1 h|)";
    QTest::newRow("narrower") << 10 << 40 << R"(
address     value  changes          read
D_W:100         7       12         1 min
D_W:500         5  no reply to…      1 h|)";
    QTest::newRow("values give way last") << 10 << 18 << R"(
address     value
D_W:100         7
D_W:500         5|)";
    QTest::newRow("and are marked") << 2 << 16 << R"(
address     val~
D_W:100        ~
... and 1 more,~|)";
    QTest::newRow("low, and no UTF-8") << 2 << 79 << R"(
name             address     value  trend             changes  changed     read
the filler's l~  D_W:100         7  _.,-#                  12    5.0 s    1 min
... and 1 more, 1 of them not good|)";
}

void TestWatchParts::tableFits()
{
    QFETCH(int, rows);
    QFETCH(int, columns);
    WatchedValue good;
    good.name = "the filler's long name";
    good.address = "D_W:100";
    good.text = "7";
    good.quality = Quality::Good;
    good.changedAt = seconds(3995);
    good.readAt = seconds(3940);
    good.changes = 12;
    good.trend = {0, 1, 2, 3, 8};
    WatchedValue bad = good;
    bad.name = bad.address = "D_W:500";
    bad.hasOwnName = false;
    bad.text = "5";
    bad.quality = Quality::Bad;
    bad.reason = "no reply to 3 requests of 500 ms each";
    bad.readAt = seconds(400);
    QString table;
    for (const TableLine &line :
         composeTable({good, bad}, seconds(4000), rows, columns, rows == 10))
        table += '\n' + line.text + (line.isGrey ? "|" : "");
    QTEST(table, "table");
}

void TestWatchParts::useOfTheLine()
{
    VirtualSettings settings;
    settings.line.baud = 115200;
    const VirtualLine line(settings);
    LoopCounters counters;
    counters.exchanges = 30;
    counters.retries = 1;
    counters.wordsRead = 1;
    counters.bytesSent = counters.bytesReceived = 2880;
    QCOMPARE(LineUse(counters, LoopCounters(), 2, line).text(),
             QString("30 exchanges in 2.0 s (15.0/s), 1 word, 1 retry, 0 errors\n"
                     "25.0 % of the line's capacity used\n"));
}

void TestWatchParts::logsGoOn_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");  // empty: refused
    const QByteArray heading = "time,name\n";
    QTest::newRow("a new log") << QByteArray() << heading;
    QTest::newRow("the same columns") << heading + "1,a\n" << heading + "1,a\n";
    QTest::newRow("other columns") << QByteArray("time,x\n1,2\n") << "time,x\n1,2\n" + heading;
    QTest::newRow("the same columns again, behind others")
        << "time,x\n1,2\n" + heading << "time,x\n1,2\n" + heading;
    QTest::newRow("a line cut by a full disk") << heading + "1," << heading + "1,\n";
    QTest::newRow("a file that is no log") << QByteArray("name,address\na,D_W:1\n") << QByteArray();
}

void TestWatchParts::logsGoOn()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QTemporaryDir folder;
    QFile log(folder.filePath("log.csv"));
    QVERIFY(log.open(QIODevice::ReadWrite));
    log.write(before);
    log.flush();
    bool refused = false;
    try {
        OutputFile(log.fileName(), {"log", "^time,"}, "time,name");
    } catch (const Failure &failure) {
        refused = failure.status() == BadInput;
    }
    log.seek(0);
    QCOMPARE(log.readAll(), after.isEmpty() ? before : after);
    QCOMPARE(refused, after.isEmpty());
}

QTEST_GUILESS_MAIN(TestWatchParts)
#include "tst_watch_parts.moc"
