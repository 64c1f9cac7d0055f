// The scripts of all subjects, played.
#include <QtCore/QFile>

#include "tst_exchange.h"

void row(const QString &name, const QString &script)
{
    QTest::newRow(qPrintable(name)) << script;
}

void Exchange::script_data()
{
    QTest::addColumn<QString>("script");
    frameRows();
    planningRows();
    serviceRows();
    writeRows();
    valueRows();
    recipeRows();
    callbackRows();
    limitRows();
}

void Exchange::script()
{
    QFETCH(QString, script);
    {
        Bench bench;
        QVERIFY(bench.init("7#0#0#3#64"));
        QCOMPARE(play(bench, script), QString());
    }
    QFile maps("/proc/self/maps");
    QVERIFY(maps.open(QIODevice::ReadOnly));
    QVERIFY2(maps.readAll().indexOf("libtolvane_link") < 0, "the driver stays in memory");
}

QTEST_MAIN(Exchange)
