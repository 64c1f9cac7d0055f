// What the subjects of the exchange tests share.
#include "tst_exchange.h"

void Exchange::playRow()
{
    QFETCH(QString, script);
    Bench bench;
    QVERIFY(bench.init("7#0#0#3#64"));
    QCOMPARE(play(bench, script), QString());
}

QTEST_MAIN(Exchange)
