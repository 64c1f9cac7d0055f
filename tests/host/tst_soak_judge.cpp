// The soak as a judge: it acquits the driver, and finds what is wrong with a broken driver or a
// lying controller, by address.
#include "host/line/virtual_line.h"
#include "host/soak/soak.h"

#include <QtTest>

using namespace host;

class TestSoakJudge : public QObject
{
    Q_OBJECT

private slots:
    void driver_data();
    void driver();
    void lyingController_data();
    void lyingController();
};

void TestSoakJudge::driver_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("broken");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<QString>("says");  // regular expression, on either output

    const QStringList brief = {"--exchanges", "2000"};
    const QStringList badLine = {"--exchanges", "2000", "--faults", "loss=50%"};
    const QStringList broken = QStringList{"--driver", BROKEN_DRIVER} + brief;
    QTest::newRow("the driver") << brief << QByteArray() << 0 << "ok +every write";
    QTest::newRow("on a bad line") << badLine << QByteArray() << 0 << "[1-9][0-9]* given up";
    QTest::newRow("the test's own driver, healthy, as JSON")
        << broken + QStringList{"--json"} << QByteArray() << 0 << "\"right\": true";

    QTest::newRow("a bit turned on its way to the controller")
        << broken << QByteArray("data on its way out") << 1
        << "D word (6[4-9]|7[0-9]) is 0x.... instead of 0x";
    QTest::newRow("a write that is never sent")
        << broken << QByteArray("a write swallowed") << 1
        << "a write of .* x[0-9]+ was neither acknowledged nor";
    QTest::newRow("a value turned on its way to the panel")
        << broken << QByteArray("data on its way in") << 1 << "D_W:64 is read as";
    QTest::newRow("a failure without a text")
        << (QStringList{"--driver", BROKEN_DRIVER} + badLine) << QByteArray("a silent failure") << 1
        << "given up without an error text";

    QTest::newRow("no number of requests")
        << QStringList{"--exchanges", "many"} << QByteArray() << 2 << "--exchanges \"many\"";
    QTest::newRow("no such fault")
        << QStringList{"--faults", "lost=2%"} << QByteArray() << 2 << "unknown fault \"lost\"";
    QTest::newRow("a real controller")
        << QStringList{"--port", "/dev/null"} << QByteArray() << 2 << "expected --overwrite";
}

void TestSoakJudge::driver()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, broken);
    qputenv("BROKEN", broken);
    QProcess soak;
    soak.setProcessChannelMode(QProcess::MergedChannels);
    soak.start(HOST_PROGRAM, QStringList{"soak"} + options);
    QVERIFY(soak.waitForFinished());
    const QString output = QString::fromUtf8(soak.readAll());
    QFETCH(QString, says);
    QVERIFY2(QRegularExpression(says).match(output).hasMatch(), qPrintable(output));
    QTEST(soak.exitCode(), "exitStatus");
}

void TestSoakJudge::lyingController_data()
{
    QTest::addColumn<bool>("forgets");
    QTest::addColumn<QString>("finding");
    QTest::newRow("acknowledges and does not store") << true << "D word 70 is 0x.... instead of 0x";
    QTest::newRow("stores where nobody wrote")
        << false << "D word 270 is 0x....: bits [0-9 ]+ changed";
}

void TestSoakJudge::lyingController()
{
    QFETCH(bool, forgets);
    VirtualSettings settings;
    settings.moving = false;
    VirtualLine line(settings);
    line.open();
    const MemoryImage start = Soak::startImage(1);
    storeImage(start, line.memory());
    const char d = plc::Memory::letter("D");
    line.controller().setObserver(
        [&](const plc::Request &request, plc::Verdict, const QByteArray &) {
            if (request.command == 'w' && request.device == d && request.word <= 70 &&
                request.word + request.words > 70)
                line.memory().setWord(d, forgets ? 70 : 270, 0x55AA);
        });

    const Driver driver = loadDriver(DRIVER_LIBRARY);
    const Identity identity = identify(driver);
    Soak soak(driver, identity, line, LoopSettings(), start, 1);
    soak.run(2000, [](qint64) {});
    soak.settle();
    soak.judge(imageOf(line.memory()));
    QFETCH(QString, finding);
    QStringList findings;
    for (const Finding &found : soak.findings())
        findings.append(found.text);
    QVERIFY2(QRegularExpression(finding).match(findings.join('\n')).hasMatch(),
             qPrintable(findings.join('\n')));
}

QTEST_GUILESS_MAIN(TestSoakJudge)
#include "tst_soak_judge.moc"
