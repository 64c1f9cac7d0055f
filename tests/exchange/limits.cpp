// Ranges longer than a frame, settings and arguments that make no sense, memory that goes away.
#include <climits>

#include "tst_exchange.h"

namespace {

/** Every way of moving a range, longer than a frame, moves all of it and nothing else. */
void longRange(const QString &what, const QString &limit)
{
    const Range range = rangeOf(what);
    const bool bits = isBitType(range.name);
    QString values[2], units[2];  // two sets, as the host passes them and in the recipe buffer
    for (int i = 0; i < 2 * range.count; ++i) {
        const int set = i % 2, value = bits ? (i * i / 6 + set) & 1 : (i * 7 + i / 251) & 0xFF;
        const QString low = QString("%1").arg(value, 2, 16, QChar('0')).toUpper();
        values[set] += bits ? low : low + "5A";
        units[set] += low + (bits ? "00" : "5A");
    }
    const QString edge(bits ? "0000" : "00000000");  // two neighbours, which stay 0
    const QString around =
        QString("%1 %2 x%3").arg(range.name).arg(range.start - 2).arg(range.count + 4);
    const QString restart = "; init 7#0#0#3#" + limit;
    const QString reread = restart + "; condition " + around + "; drain => done 0; get " + around;
    row(what + ", block limit " + limit,
        restart + "; write " + what.section(" x", 0, 0) + " = " + values[0] + " => *; drain" +
            reread + " : " + edge + values[0] + edge + restart + "; monitor " + around +
            " : *; serve 40 : * => *; get " + around + " : " + edge + values[0] + edge +
            "; monitor : 0" + restart + "; recipe " + what + " @1 : 1; request 0 1; drain => *" +
            QString("; buffer 0 x%1 : 0000").arg(range.count + 2) + units[0] + "0000" +
            "; buffer 1 = " + units[1] + "; request 1 0; drain" + reread + " : " + edge +
            values[1] + edge);
}

}  // namespace

void limitRows()
{
    row("a property text of 4 parts changes nothing", R"(init 9#1#0#1
        monitor D_W 0 x2, D_W 5 : 1; write D_W 0 = 0100 => D_W 0; fail => D_W 0)");
    row("more parts than needed", R"(init 7#0#0#1#64#0#99; monitor D_W 0, D_W 50 : 1; send : *
        reply none : 2)");
    row("parts that are no numbers count as 0", R"(init #x#0#1e3#99999999999
        monitor D_W 5, D_W 6 : 2; data 0100 => 0 1 D_W 5; send : *; reply none : 2)");
    row("no tries mean one", R"(init; init 7#0#0#-3#64; monitor D_W 5 : 1; send : *
        reply none : 2)");
    row("the ends of the number range", R"(
        monitor D_W 2147483647 x2, D_W -2147483648, 2147483647#M_bit 2147483640 x20 : *
        write D_W 2147483647 = 0100 0200 => D_W 2147483647, D_W -2147483648
        write M_bit 2147483647 = 01 01
        condition D_W 2147483640 x40000; condition TX 2147483640 x100
        get D_W 2147483647 x2 : 0100 0200; get D_W -2147483648 : 0200
        get M_bit -2147483648 : 01; recipe D_W 2147483647 x9 @4087, TX 2147483640 x9 @4087 : *)");
    row("below 0", R"(write M_bit -17 = 0101 => *; get M_bit -18 x4 : 00010100
        write M_bit -1 = 01; get M_bit 15 : 00; write D_W -5 = 1234 5678
        get D_W -5 x2 : 12345678)");
    row("what no frame can address is shown, but not sent", R"(write D_W 32768 = 0100
        write D_W -1 = 0200; write M_bit 524288 = 01; write M_bit -1 = 01 01
        write TX 524288 = 01 => TX 524288; get D_W 32768 : 0100; get TX 524288 : 01
        condition D_W 32768, D_W -1 x9, TX -1, M_bit 524288; serve 2 : - -
        monitor D_W 32768, D_W -1, M_bit 524288, CX -1 : 0
        recipe D_W 32768, M_bit -1, TX 524288 : 0; condition D_W 9, D_W 32768
        serve 1 : rD9 => done 0; send : -)");
    row("the last that a frame can address", R"(write D_W 32767 = 0100; serve 1 : wD32767
        write M_bit 524287 = 01; send : oi FEFF 00 0080; reply ok; condition TX 524287
        send : rl FEFF 00 20; reply ok => done 0)");
    row("of a longer request the pieces that begin inside are sent", R"(init 7#0#0#3#32
        write D_W 32760 x64; send : *; item : 0 1 D_W 32760 x32; reply ok
        condition D_W 32760 x64; send : *; item : 0 1 D_W 32760 x32; reply ok => done 0
        send : -; monitor D_W -100 x300 : 2; serve 2 : rD27x127 rD154x46)");
    row("a new start forgets queues, cache, frame in flight, tries and turns", R"(
        monitor D_W 5, D_W 500 : 2; data 0100 => D_W 5; flood condition 6; serve 3 : *
        flood write 1; send : wa 0000 00 02 0100; reply none : 8; reply none : 8
        init 7#0#0#3#64; reply ok : 0; request 1 0; serve 2 : - -; request 0 0
        get D_W 5 : 0000; serve 2 : - -; flood condition 1; fail => done -1; monitor D_W 5 : 1
        flood condition 3; serve 4 : rD0 rD1 rD5 rD2 => done 0)");

    const QString all(
        "D_W 3 x700 : 8 64 127 200 2147483647|M_bit 1604 x2000 : 8 64 200 268435456 2147483647|"
        "D_W 3 x400 : -2147483648 -1 0 1|M_bit 3 x400 : -2147483648 0 1|TX 3 x400 : -1 0 1|"
        "K_bit 15 x2040 : 127 255|TX 5 x1500 : 8 200 2147483647");
    for (const QString &each : all.split('|')) {
        for (const QString &limit : each.section(" : ", 1).split(' '))
            longRange(each.section(" : ", 0, 0), limit);
    }
}

/** No request covers more than 524,288 addresses; what lies beyond is ignored. */
void Exchange::garbageCounts()
{
    const int most = 524288;
    for (const char *const name : {"D_W", "M_bit", "TX", "X"}) {
        const Range garbage(name, 3, INT_MAX);
        Bench bench;
        QVERIFY(bench.init("7#0#0#3#64"));
        bench.monitor(Ranges(1, garbage));
        bench.condition(garbage);
        bench.recipe(Ranges(1, garbage));
        std::vector<unsigned char> values(size_t(most * widthOf(garbage)), 1);
        std::vector<unsigned char> out(values.size() + 1);
        bench.driver.setData(1, name, 3, INT_MAX, values.data(), 0);
        bench.driver.getData(1, name, 3, INT_MAX, out.data());
        values.push_back(0);
        QVERIFY(values == out);
        QVector<QString> texts;
        QVector<int> numbers;
        bench.driver.multiCopy(name, 3, INT_MAX, 1, texts, numbers);
        QCOMPARE(int(texts.size()), garbage.name == "X" ? 0 : most);
    }
}

void Exchange::otherMemory()
{
    // A new start with other memory: the old is not looked at any more.
    Bench bench;
    QVERIFY(bench.init("7#0#0#3#64"));
    bench.recipe(Ranges(1, Range("D_W", 5)));
    std::vector<unsigned char> shared(SharedBlockBytes), buffer(2);
    QMutex mutex;
    bench.driver.initProperty(shared.data(), nullptr, buffer.data(), nullptr, "", &mutex);
    bench.mutex.lock();  // would be waited for without end
    QCOMPARE(play(bench, "request 1 1; send : -; plc D 5 = 3412"), QString());
    shared[RecipeReadRequest] = 1;
    QVERIFY(bench.send());
    bench.reaction = [&bench](const QString &) { bench.flaws.clear(); };  // the old mutex is held
    QCOMPARE(bench.reply(bench.answer()), 1);
    QCOMPARE(QByteArray(reinterpret_cast<char *>(buffer.data()), 2), QByteArray("\x34\x12"));
    QCOMPARE(int(bench.buffer[0]), 0);
    QCOMPARE(int(shared[RecipeReadRequest]), 0);
    bench.mutex.unlock();
}

void Exchange::vanishingTexts()
{
    // Nothing of a host's text is shared: the plug-in that it is a literal of may be unloaded.
    Bench bench;
    QVERIFY(bench.init("7#0#0#3#64"));
    QString name("D_W"), page("a page");
    bench.driver.SetDriverPropertyPage(page);
    bench.recipe(Ranges(1, Range(name, 5)));
    bench.monitor(Ranges(1, Range(name, 5)));
    bench.condition(Range(name, 9));
    bench.write(Range(name, 5), QByteArray(2, '\1'));
    QVERIFY(page.isDetached());
    QVERIFY(name.isDetached());
    name = "U";
    bench.write(Range(name, 5), QByteArray(1, '\1'));
    QVERIFY(name.isDetached());
}

void Exchange::nullPointers()
{
    Bench bench;
    const Driver &driver = bench.driver;
    const auto restart = [&](unsigned char *shared, int *result, const char *properties) {
        return driver.initProperty(shared, nullptr, nullptr, result, properties, nullptr);
    };
    // Before any start: nothing to send or to receive, values still show.
    QCOMPARE(play(bench, "send : -; reply ok : 0; write D_W 5 = 0100; get D_W 5 : 0100"),
             QString());
    QVERIFY(bench.errorText.isEmpty() && !bench.errorText.isNull());
    int result = -1;
    QCOMPARE(restart(nullptr, nullptr, nullptr), 1);
    QCOMPARE(restart(nullptr, nullptr, "0#0#0#3#64"), 1);
    QCOMPARE(play(bench, "recipe D_W 5 owner 0 : 1; flood write 2; serve 3 : wD0 wD1 -"),
             QString());
    QCOMPARE(restart(bench.shared.data(), &result, nullptr), 1);
    QCOMPARE(play(bench, "request 1 1; flood write 2; serve 3 : wD0 wD1 -; requested : 0 0"),
             QString());

    QVERIFY(bench.init("7#0#0#3#64"));
    QCOMPARE(driver.setData(1, "D_W", 5, 2, nullptr, 0), 1);
    QCOMPARE(driver.getData(1, "D_W", 5, 2, nullptr), 1);
    QCOMPARE(play(bench, "send : -; monitor D_W 5 : 1"), QString());
    QCOMPARE(driver.getSendFrame(nullptr), 0);
    QVERIFY(bench.send());
    QCOMPARE(driver.dealRcvFrame(bench.answer(), nullptr), 1);
    QCOMPARE(driver.dealRcvFrame("x", nullptr), 0);
    driver.getProtocolType(nullptr);
    QCOMPARE(driver.checkAddrValidity("D_W", "5", nullptr, 1, 1), 0);
    QCOMPARE(driver.checkAddr("D_W", "5", nullptr, 0, 1, 0), 0);

    driver.setAddrValueChangeCallBack(nullptr);
    QCOMPARE(play(bench,
                  "plc D 5 = 0100 0200; serve 1 : rD5; write D_W 5 = 0900; write TX 5 = 01;"
                  "condition D_W 9; recipe D_W 5 @3, D_W 6 @4 : 2; request 0 1;"
                  "serve 4 : rD5x2 wD5 oTX0 rD9; buffer 3 x2 : 0100 0200"),
             QString());
}
