// Random days of a panel: the driver, and beside it the model that says what it must do.
#include <algorithm>
#include <random>

#include "model.h"
#include "tst_exchange.h"

namespace {

bool holdAlike(const plc::Memory &one, const plc::Memory &other)
{
    for (const char device : {'a', 'i', 'l'})
        for (int word = 0; word < 80; ++word)
            if (one.word(device, word) != other.word(device, word))
                return false;
    return true;
}

/** A day of 500 steps; what went wrong, or nothing. */
QString randomDay(const QByteArray &property, unsigned seed)
{
    const QList<QByteArray> values = property.split('#');
    Bench bench;
    Model model(values[4].toInt(), values[3].toInt(), values[1] != "0");
    if (!bench.init(property))
        return "the driver does not start";
    std::mt19937 random(seed);
    const auto pick = [&random](int below) { return int(random() % unsigned(below)); };
    Ranges earlier;
    // Often one of the latest again, so that requests meet their like.
    const auto range = [&pick, &earlier] {
        if (!earlier.empty() && pick(3)) {
            Range again = earlier[size_t(pick(qMin(4, int(earlier.size()))))];
            again.count = pick(4) ? again.count : 1 + pick(6);
            return again;
        }
        const char *const types[] = {"D_W", "M_W", "M_bit", "M_bit", "TX"};
        Range some(types[pick(5)]);
        some.start = pick(some.name.endsWith("_W") ? 20 : some.name == "TX" ? 40 : 320);
        some.count = 1 + (pick(3) ? pick(3) : pick(40));
        some.station = pick(8) ? 1 : 2;
        earlier.insert(earlier.begin(), some);
        return some;
    };
    for (size_t i = 0; i < 500; ++i)
        bench.buffer[i] = model.buffer[i] = static_cast<unsigned char>(pick(3) ? pick(256) : 0);
    bool isLost = false;
    for (int step = 0; step < 500; ++step) {
        QString did, must;
        const int what = pick(28);
        if (what == 0) {
            Ranges keys(size_t(pick(7)));
            std::generate(keys.begin(), keys.end(), range);
            did = QString("%1 blocks").arg(bench.monitor(keys));
            must = QString("%1 blocks").arg(model.monitor(keys));
        } else if (what < 3) {
            const Range some = range();
            bench.condition(some);
            model.condition(some);
        } else if (what < 6) {
            const Range some = range();
            QByteArray bytes;
            while (bytes.size() < some.count * widthOf(some))
                bytes += char(pick(9) ? pick(2) : pick(256));
            bench.write(some, bytes);
            model.write(some, bytes);
        } else if (what < 10) {
            const char device = "ail"[pick(3)];
            const int word = pick(pick(2) ? 24 : 8);
            const quint16 value = quint16(pick(2) ? pick(4) : pick(0x10000));
            bench.memory.setWord(device, word, value);
            model.memory.setWord(device, word, value);
        } else if (what == 24) {
            Ranges entries(size_t(pick(5)));
            std::generate(entries.begin(), entries.end(), range);
            for (Range &entry : entries)
                entry.unit = pick(200);
            did = QString("%1 entries").arg(bench.recipe(entries));
            must = QString("%1 entries").arg(model.recipe(entries));
        } else if (what > 24) {
            const int which = pick(2);
            model.asked[which] = static_cast<unsigned char>(pick(2));
            bench.shared[size_t(RecipeWriteRequest + which)] = model.asked[which];
        } else if (what < 12) {
            const Range some = range();
            did = bench.get(some).toHex();
            must = model.get(some).toHex();
        } else {
            did = bench.send() ? bench.requestText() : "-";
            must = model.request();
            if (did == must && did != "-") {
                isLost = !pick(isLost ? 2 : 7);
                const QByteArray reply = isLost ? QByteArray() : bench.answer();
                did += QString(" (%1)").arg(bench.reply(reply));
                must += QString(" (%1)").arg(isLost ? model.bad() : model.good());
            }
        }
        did += " => " + bench.calls.join(", ");
        must += " => " + model.reports.join(", ");
        if (!holdAlike(bench.memory, model.memory))
            bench.flaws << "another value is written";
        if (bench.buffer != model.buffer)
            bench.flaws << "the recipe buffer differs";
        if (!std::equal(model.asked, model.asked + 2, &bench.shared[RecipeWriteRequest]))
            bench.flaws << "the request bytes differ";
        if (did != must || !bench.flaws.isEmpty())
            return QString("seed %1, step %2: %3, not %4; ").arg(seed).arg(step).arg(did, must) +
                   bench.flaws.join("; ");
        bench.calls.clear();
        model.reports.clear();
    }
    return QString();
}

}  // namespace

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
    for (unsigned seed = 1; seed <= 50; ++seed)
        QCOMPARE(randomDay(property, seed), QString());
}
