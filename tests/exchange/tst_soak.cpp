// Random days of a panel, each repeatable by its seed.
#include <QtTest>

#include "day.h"

class Soak : public QObject
{
    Q_OBJECT

private slots:
    void day_data()
    {
        QTest::addColumn<uint>("seed");
        for (uint seed = 1; seed <= 8; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }

    void day()
    {
        QFETCH(uint, seed);
        Day day(seed);
        for (int i = 0; i < 4000; ++i)
            day.go();
        day.heal();
        QCOMPARE(day.discrepancies().join("; "), QString());
        // A day on which nothing happened proves nothing.
        const Day::Counts &counts = day.counts;
        QVERIFY(counts.pushed > 30 && counts.pulled > 30 && counts.announced > 30);
        QVERIFY(counts.retries > 500 && counts.givenUp > 10);
    }
};

QTEST_GUILESS_MAIN(Soak)
#include "tst_soak.moc"
