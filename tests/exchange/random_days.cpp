// Random days of a panel: the driver, and beside it the model that says what it must do.
#include <algorithm>
#include <random>

#include "model.h"
#include "tst_exchange.h"

void Exchange::randomDays_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::newRow("one word a block, one try") << QByteArray("7#0#0#1#1");
    QTest::newRow("small blocks") << QByteArray("7#0#0#3#4");
    QTest::newRow("large blocks") << QByteArray("7#0#0#2#64");
    QTest::newRow("writes are only kept") << QByteArray("7#1#0#3#10");
}

void Exchange::randomDays()
{
    QFETCH(QByteArray, property);
    const QList<QByteArray> values = property.split('#');
    for (unsigned seed = 1; seed <= 50; ++seed) {
        Bench bench;
        QVERIFY(bench.init(property));
        Model model(values[4].toInt(), values[3].toInt(), values[1] != "0");
        std::mt19937 random(seed);
        const auto pick = [&random](int below) { return int(random() % unsigned(below)); };
        Ranges earlier;
        const auto range = [&pick, &earlier] {
            const char *const types[] = {"D_W", "M_W", "M_bit", "M_bit", "TX"};
            if (!earlier.empty() && pick(3))
                return earlier[pick(qMin(4, int(earlier.size())))];
            Range some(types[pick(5)]);
            some.start = pick(some.name.endsWith("_W") ? 20 : some.name == "TX" ? 40 : 320);
            some.count = 1 + (pick(3) ? pick(3) : pick(40));
            some.station = pick(8) ? 1 : 2;
            earlier.insert(earlier.begin(), some);
            return some;
        };
        for (int step = 0; step < 500; ++step) {
            const QByteArray where = QString("seed %1, step %2").arg(seed).arg(step).toLatin1();
            const int what = pick(24);
            if (what == 0) {
                Ranges keys(size_t(pick(7)));
                std::generate(keys.begin(), keys.end(), range);
                QCOMPARE(bench.monitor(keys), model.monitor(keys));
            } else if (what < 3) {
                const Range some = range();
                bench.condition(some);
                model.condition(some);
            } else if (what < 6) {
                const Range some = range();
                QByteArray bytes;
                while (bytes.size() < some.count * widthOf(some))
                    bytes += char(widthOf(some) == 2 || !pick(9) ? pick(256) : pick(2));
                bench.write(some, bytes);
                model.write(some, bytes);
            } else if (what < 10) {
                const int word = pick(24);
                const char device = plc::Memory::devices().at(pick(plc::Memory::DeviceCount));
                bench.memory.setWord(device, word, quint16(random()));
                model.memory.setWord(device, word, bench.memory.word(device, word));
            } else if (what < 12) {
                const Range some = range();
                QVERIFY2(bench.get(some) == model.get(some), where);
            } else {
                const QString asked = bench.send() ? bench.requestText() : "-";
                QVERIFY2(asked == model.request(), where + ": " + asked.toLatin1());
                const bool isLost = asked != "-" && !pick(7);
                if (isLost)
                    QVERIFY2(bench.reply(QByteArray()) == model.bad(), where);
                else if (asked != "-")
                    QVERIFY2(bench.reply(bench.answer()) == model.good(), where);
            }
            QVERIFY2(bench.calls == model.reports, where);
            QVERIFY2(bench.flaws.isEmpty(), where + bench.flaws.join("; ").toLatin1());
            bench.calls.clear();
            model.reports.clear();
        }
        for (const char device : plc::Memory::devices())
            for (int word = 0; word < 80; ++word)
                QCOMPARE(bench.memory.word(device, word), model.memory.word(device, word));
    }
}
