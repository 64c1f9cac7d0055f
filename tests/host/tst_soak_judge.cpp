// The soak as a judge: it acquits the driver, and finds what is wrong with a broken driver or a
// lying controller, by address.
#include <QtTest>

namespace {

constexpr int PatienceMs = 60000;

}  // namespace

class TestSoakJudge : public QObject
{
    Q_OBJECT

private slots:
    void verdict_data();
    void verdict();
};

void TestSoakJudge::verdict_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("environment");
    QTest::addColumn<int>("exitStatus");
    QTest::addColumn<QString>("says");  // regular expression, on either output

    const QStringList brief = {"--exchanges", "400", "--faults", "loss=2%,noise=1%"};
    const QStringList badLine = {"--exchanges", "120", "--faults", "loss=50%"};
    const QStringList broken = QStringList{"--driver", BROKEN_DRIVER} + brief;
    const QStringList lying = QStringList{"--controller", LYING_CONTROLLER} + brief;
    const QString someOfD = "D word (6[4-9]|7[0-9]) is 0x.... instead of 0x";

    QTest::newRow("the driver") << brief << QStringList() << 0 << "ok +every write";
    QTest::newRow("on a bad line") << badLine << QStringList() << 0 << "[1-9][0-9]* given up";
    QTest::newRow("the test's own driver and controller, healthy, as JSON")
        << (broken + QStringList{"--controller", LYING_CONTROLLER, "--json"}) << QStringList() << 0
        << "\"right\": true";

    QTest::newRow("a bit turned on its way to the controller")
        << broken << QStringList{"BROKEN=data on its way out"} << 1 << someOfD;
    QTest::newRow("a write that is never sent")
        << broken << QStringList{"BROKEN=a write swallowed"} << 1
        << "a write of .* x[0-9]+ was neither acknowledged nor";
    QTest::newRow("a value turned on its way to the panel")
        << broken << QStringList{"BROKEN=data on its way in"} << 1 << "D_W:64 is read as";
    QTest::newRow("a failure without a text")
        << (QStringList{"--driver", BROKEN_DRIVER} + badLine)
        << QStringList{"BROKEN=a silent failure"} << 1 << "given up without an error text";
    QTest::newRow("a controller that acknowledges and does not store")
        << lying << QStringList{"LIE=forgets a word"} << 1 << someOfD;
    QTest::newRow("a controller that stores where nobody wrote")
        << lying << QStringList{"LIE=spoils another word"} << 1
        << "D word 270 is 0x....: bits [0-9 ]+ changed";

    QTest::newRow("no number of requests")
        << QStringList{"--exchanges", "many"} << QStringList() << 2 << "--exchanges \"many\"";
    QTest::newRow("no such fault")
        << QStringList{"--faults", "lost=2%"} << QStringList() << 2 << "unknown fault \"lost\"";
    QTest::newRow("no such controller")
        << QStringList{"--controller", "/nowhere/plc"} << QStringList() << 2 << "/nowhere/plc";
}

void TestSoakJudge::verdict()
{
    QFETCH(QStringList, options);
    QFETCH(QStringList, environment);
    QProcess soak;
    soak.setProcessChannelMode(QProcess::MergedChannels);
    soak.setProcessEnvironment([&] {
        auto all = QProcessEnvironment::systemEnvironment();
        for (const QString &variable : environment)
            all.insert(variable.section('=', 0, 0), variable.section('=', 1));
        return all;
    }());
    soak.start(HOST_PROGRAM, QStringList{"soak"} + options);
    QVERIFY(soak.waitForFinished(PatienceMs));
    const QString output = QString::fromUtf8(soak.readAll());
    QFETCH(QString, says);
    QVERIFY2(QRegularExpression(says).match(output).hasMatch(), qPrintable(output));
    QTEST(soak.exitCode(), "exitStatus");
}

QTEST_GUILESS_MAIN(TestSoakJudge)
#include "tst_soak_judge.moc"
