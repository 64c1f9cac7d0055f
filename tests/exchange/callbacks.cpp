// What the panel may do inside a callback: everything.
#include "tst_exchange.h"

void Exchange::callbacks_data()
{
    scripts();
    row("the old value shows inside the report of a read", R"(
        monitor D_W 10, M_bit 3 : 2
        send : *; on M_bit 3 do get M_W 0 : 0000; reply data FF00 => M_bit 3
        send : *; on D_W 10 do get D_W 10 : 0000; reply data 7856 => D_W 10
        get D_W 10 : 7856)");
    row("the controller's value shows inside the report of a failed write", R"(
        monitor D_W 10 : 1; send : *; reply data 3412 => D_W 10
        write D_W 10 = 7856 => D_W 10; on D_W 10 do get D_W 10 : 3412; send : *; fail => D_W 10)");
    row("a recipe unit is filled when it is announced", R"(
        recipe D_W 10 x2 @3 : 1; plc D 10 = 3412 7856; request read
        on RWI 3 do buffer 3 : 3412; serve 1 : rD10x2 => RWI 3, RWI 4)");
    row("a write made inside a report is sent", R"(
        monitor D_W 10 : 1; on D_W 10 do write D_W 11 = 0900
        send : *; reply data 7856 => D_W 10; send : wa 1600 00 02 0900)");
    row("a neighbouring bit written inside a report stays written", R"(
        monitor M_bit 0 : 1; on M_bit 0 do write M_bit 1 = 01; write M_bit 0 = 01 => M_bit 0
        get M_bit 0 x2 : 01 01)");
    row("a write made inside the report of a failed write outlives it", R"(
        monitor D_W 10 : 1; write D_W 10 = 7856 => D_W 10; on D_W 10 do write D_W 10 = 0900
        send : *; fail => *; send : wa 1400 00 02 0900)");
    row("a condition read asked for at the end of another follows it", R"(
        condition D_W 10; on done 0 do condition D_W 10; serve 1 : rD10 => done 0
        on done 0 do condition D_W 20; serve 1 : rD10 => done 0; serve 2 : rD20 - => done 0)");
}

void Exchange::anyExportInAnyCallback_data()
{
    const char *const callbacks[] = {
        "%1; write D_W 10 = 0100 0200 0300 => *",
        "%1; write M_bit 3 = 010101 => *",
        "%1; plc D 10 = 0100 0200 0300; serve 3 : * => *",
        "write D_W 10 = 0100 0200 0300 => *; %1; send : *; fail : * => *",
        "write M_bit 3 = 010101 => *; serve 1 : *; %1; serve 1 : * => *",
        "monitor : 0; request read; %1; serve 1 : * => *",
        "monitor : 0; request read; serve 1 : * => *; %1; serve 1 : * => *",
        "condition D_W 500 x3; %1; send : *; fail : * => *"};
    const char *const actions[] = {"get M_W 0 x400 : *",
                                   "write M_bit 4 = 00",
                                   "flood write 600",
                                   "flood condition 600",
                                   "monitor : *",
                                   "monitor D_W 0 x300, M_bit 0 x99, TX 5 x99 : *",
                                   "recipe TX 9 x3 @4000, D_W 10 x9 @9, M_bit 40 x9 @99 : *",
                                   "recipe XX 1 : *",
                                   "request write",
                                   "init 7#1#0#0#0",
                                   "send : *",
                                   "reply none : *",
                                   "reply data 01000200 : *"};
    QTest::addColumn<QString>("callback");
    QTest::addColumn<QString>("action");
    for (const char *callback : callbacks) {
        for (const char *action : actions)
            QTest::addRow("%s, %s", callback, action)
                << QString::fromLatin1(callback) << QString::fromLatin1(action);
    }
}

void Exchange::anyExportInAnyCallback()
{
    QFETCH(QString, callback);
    QFETCH(QString, action);
    Bench bench;
    QVERIFY(bench.init("7#0#0#3#64"));
    QCOMPARE(play(bench,
                  "monitor D_W 10 x3, M_bit 3 x3, TX 5 x3 : 3;"
                  "recipe D_W 10 @1, D_W 11 x2 @2, M_bit 3 x3 @7 : 3;" +
                      callback.arg("on * do " + action)),
             QString());
    QVERIFY2(!bench.reaction, "no callback came");
    bench.monitor({});
    bench.drain();

    // Whatever happened: after a new start everything works.
    QCOMPARE(play(bench,
                  "request none; init 7#0#0#3#64; plc D 10 = 3412; monitor D_W 10 : 1;"
                  "serve 1 : rD10 => D_W 10; write D_W 20 = 0100; condition D_W 30;"
                  "serve 3 : wD20 rD30 rD10 => done 0"),
             QString());
}
