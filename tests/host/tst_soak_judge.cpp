// The soak as a judge: it acquits the driver, and finds what is wrong with a broken driver or a
// lying controller, by address.
#include "host/line/virtual_line.h"
#include "host/soak/soak.h"

#include <QtTest/QtTest>

using namespace host;

namespace {

enum Wrong {
    Nothing,
    ValueOut,
    ValueIn,
    WriteSwallowed,
    FailureUntold,
    WordForgotten,
    WordSpoiled,
    WordErased
};
Wrong wrong = Nothing;
Driver real;

constexpr int TheWord = 70;  // of D: where the faults are
constexpr int NobodysWord = 270;

bool hits(Wrong chosen, const QString &regName, int startAddr, int count)
{
    return wrong == chosen && regName == QLatin1String("D_W") && startAddr <= TheWord &&
           startAddr + count > TheWord;
}

int setData(int stationNo, QString regName, int startAddr, int count, const unsigned char *values,
            int kind)
{
    if (hits(WriteSwallowed, regName, startAddr, count))
        return 1;
    const bool words = regName.endsWith(QLatin1String("_W"));
    std::vector<unsigned char> sent(values, values + (words ? 2 : 1) * count);
    if (hits(ValueOut, regName, startAddr, count))
        sent[size_t(2 * (TheWord - startAddr))] ^= 1;
    return real.setData(stationNo, regName, startAddr, count, sent.data(), kind);
}

int getData(int stationNo, QString regName, int startAddr, int count, unsigned char *out)
{
    const int result = real.getData(stationNo, regName, startAddr, count, out);
    if (hits(ValueIn, regName, startAddr, count))
        out[2 * (TheWord - startAddr)] ^= 1;
    return result;
}

int dealRcvFrame(QByteArray reply, QString *errorText)
{
    const int result = real.dealRcvFrame(reply, errorText);
    if (wrong == FailureUntold)
        errorText->clear();
    return result;
}

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
    QTest::addColumn<int>("chosen");
    QTest::addColumn<QString>("finding");  // regular expression
    QTest::newRow("a value turned on its way out")
        << int(ValueOut) << "D word 70 is 0x.... instead of 0x";
    QTest::newRow("a value turned on its way in") << int(ValueIn) << "D_W:70 is read as";
    QTest::newRow("a write that is never sent")
        << int(WriteSwallowed) << "a write of .* x[0-9]+ was neither acknowledged nor";
    QTest::newRow("a failure without a text")
        << int(FailureUntold) << "given up without an error text";
    QTest::newRow("a controller that acknowledges and does not store")
        << int(WordForgotten) << "D word 70 is 0x.... instead of 0x";
    QTest::newRow("a controller that stores where nobody wrote")
        << int(WordSpoiled) << "D word 270 is 0x....: bits [0-9 ]+ changed";
    QTest::newRow("a controller that loses a word nobody wrote")
        << int(WordErased) << "D word 270 is 0x0000: bits [0-9 ]+ changed";
}

void TestSoakJudge::verdict()
{
    QFETCH(int, chosen);
    wrong = Wrong(chosen);
    real = loadDriver(DRIVER_LIBRARY);
    Driver driver = real;
    driver.setData = setData;
    driver.getData = getData;
    driver.dealRcvFrame = dealRcvFrame;

    VirtualSettings settings;
    settings.moving = false;
    settings.lostRequests = 100000;
    VirtualLine line(settings);
    line.open();
    line.controller().setObserver(
        [&](const plc::Request &request, plc::Verdict, const QByteArray &) {
            const bool hit = request.command == 'w' && request.device == 'a' &&
                             request.word <= TheWord && request.word + request.words > TheWord;
            if (hit && wrong >= WordForgotten)
                line.memory().setWord('a', wrong == WordForgotten ? TheWord : NobodysWord,
                                      wrong == WordErased ? 0 : 0x55AA);
        });

    Soak soak(driver, line, LoopSettings(), 1);
    soak.run(3000);
    soak.judge();
    QStringList findings;
    for (const Finding &found : soak.findings())
        findings.append(found.text);
    QFETCH(QString, finding);
    QVERIFY2(findings.join('\n').contains(QRegularExpression(finding)),
             qPrintable(findings.join('\n')));
    QVERIFY(soak.counts().writesGivenUp > 0 && soak.counts().recipesRead > 0);
}

QTEST_GUILESS_MAIN(TestSoakJudge)
#include "tst_soak_judge.moc"
