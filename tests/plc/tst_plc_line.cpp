// What becomes of the controller's replies on the line: faults, and when their bytes leave.
#include <QtTest>
#include <set>

#include "frames.h"
#include "plc/pacing.h"

using namespace plc;

namespace {

/** A request, or, of one whose parts come apart, the part up to the address or the one behind it.
 */
QByteArray partOf(const QByteArray &text)
{
    const QByteArray cut("ra0000");
    if (text == cut)
        return '\x02' + cut;
    return text.startsWith('~') ? framed(cut + text.mid(1)).mid(1 + cut.size()) : framed(text);
}

constexpr quint32 LateFirst = 3;  // a seed of "late=50%": the first reply is late, the second not

/** The faults of a plan text that is right. */
Faults faultsOf(const char *plan, quint32 seed = 1)
{
    FaultPlan parsed;
    const QString wrong = FaultPlan::parse(QLatin1String(plan), &parsed);
    if (!wrong.isEmpty())
        qFatal("%s", qPrintable(wrong));
    return Faults(parsed, seed);
}

}  // namespace

class TestPlcLine : public QObject
{
    Q_OBJECT

private slots:
    void faultPlans()
    {
        const std::pair<const char *, const char *> plans[] = {
            {"loss=2%,cut=1%,flip=1%,late=1%:300ms,double=1%,noise=1%,mute=0.1%:2s", ""},
            {"loss=-1%", "\"loss=-1%\""},
            {"late=1%", "\"late=1%\""},
            {"mute=1%:3601s", "\"mute=1%:3601s\""},
            {"late=1%:10ms..10ms", ""},
            {"late=1%:20ms..10ms", "\"late=1%:20ms..10ms\""},
            {"loss=0.00001%", "\"loss=0.00001%\""},
            {"loss=5000000000%", "\"loss=5000000000%\""},
            {"loss=1%,loss=1%", "\"loss\""},
            {"loss=1%,", "\"\""},
            {"loss=60%,cut=40.0001%", "100%"}};
        for (const auto &[list, named] : plans) {
            FaultPlan plan;
            const QString wrong = FaultPlan::parse(list, &plan);
            QVERIFY2(wrong.isEmpty() == QString(named).isEmpty() && wrong.contains(named), list);
        }
    }

    void disturbs_data()
    {
        QTest::addColumn<QByteArray>("plan");
        QTest::addColumn<int>("pieces");
        QTest::addColumn<int>("shortest");
        QTest::addColumn<int>("longest");
        QTest::addColumn<int>("afterMs");
        const auto row = [](const char *plan, int pieces, int shortest, int longest, int afterMs) {
            QTest::newRow(plan) << QByteArray(plan) << pieces << shortest << longest << afterMs;
        };
        row("loss=100%", 0, 0, 0, 0);
        row("cut=100%", 1, 1, 8, 0);
        row("flip=100%", 1, 9, 9, 0);
        row("late=100%:300ms", 1, 9, 9, 300);
        row("double=100%", 2, 9, 9, 0);
        row("noise=100%", 1, 10, 17, 0);
        row("mute=100%:3600s", 0, 0, 0, 0);
    }
    void disturbs()
    {
        QFETCH(QByteArray, plan);
        QFETCH(int, pieces);
        QFETCH(int, shortest);
        QFETCH(int, longest);
        Faults faults = faultsOf(plan.constData());
        std::set<int> sizes;
        for (int i = 0; i < 300; ++i) {
            const QVector<Transmission> sent = faults.transmit(zeroReply, i);
            QCOMPARE(int(sent.size()), pieces);
            for (const Transmission &piece : sent) {
                QTEST(piece.afterMs, "afterMs");
                sizes.insert(int(piece.bytes.size()));
                // What has the reply's size differs in one bit when flipped, else not at all.
                int differing = 0;
                for (int at = 0; piece.bytes.size() == zeroReply.size() && at < 9; ++at)
                    differing += int(qPopulationCount(quint8(piece.bytes[at] ^ zeroReply[at])));
                QCOMPARE(differing, plan.startsWith("flip") ? 1 : 0);
            }
        }
        if (pieces > 0) {
            QCOMPARE(*sizes.begin(), shortest);
            QCOMPARE(*sizes.rbegin(), longest);
        }
        faults.heal();
        QCOMPARE(faults.transmit(zeroReply, 300).constFirst().bytes, zeroReply);
    }

    void repeatsWithSeed()
    {
        const char plan[] = "loss=10%,cut=10%,flip=10%,late=10%:5ms,double=10%,noise=10%";
        const auto run = [&plan](quint32 seed, Faults *faults) {
            *faults = faultsOf(plan, seed);
            QByteArray all;
            for (int i = 0; i < 10000; ++i) {
                for (const Transmission &piece : faults->transmit(zeroReply, i))
                    all += char(piece.afterMs) + piece.bytes;
            }
            return all;
        };
        Faults faults;
        const QByteArray first = run(7, &faults);
        QCOMPARE(run(7, &faults), first);
        for (int fault = 0; fault < int(Fault::Mute); ++fault)
            QVERIFY2(qAbs(faults.count(Fault(fault)) - 1000) < 150, faultName(Fault(fault)));
        QVERIFY(run(8, &faults) != first);
    }

    void muteEnds()
    {
        Faults faults = faultsOf("mute=1%:2s");
        qint64 now = 0;
        while (!faults.transmit(zeroReply, now).isEmpty())
            ++now;
        QVERIFY(faults.transmit(zeroReply, now + 1999).isEmpty());
        QCOMPARE(faults.transmit(zeroReply, now + 2000).constFirst().bytes, zeroReply);
        QCOMPARE(faults.count(Fault::Mute), qint64(2));
    }

    void lateWithinBounds()
    {
        Faults faults = faultsOf("late=100%:10ms..13ms");
        std::set<int> delays;
        for (int i = 0; i < 100; ++i)
            delays.insert(faults.transmit(zeroReply, i).constFirst().afterMs);
        QCOMPARE(delays, (std::set<int>{10, 11, 12, 13}));
    }

    void paces_data()
    {
        QTest::addColumn<QByteArray>("faults");
        QTest::addColumn<int>("turnaroundMs");
        QTest::addColumn<QByteArrayList>("requests");  // "ms text"; "~" for the second half of one
        QTest::addColumn<QByteArrayList>("replies");   // "ms text" when their last byte has left
        const auto row = [](const char *name, const char *plan, int turnaroundMs,
                            const QByteArrayList &requests, const QByteArrayList &replies) {
            QTest::newRow(name) << QByteArray(plan) << turnaroundMs << requests << replies;
        };
        // A byte takes 1 ms: a read of one word 14, its reply 9; of three words 14 and 17.
        row("after a turnaround", "", 100, {"0 ra00000002"}, {"123 r0000"});
        row("piled up", "", 0, {"0 ra00000006", "0 ra00000002", "1 ra00000002"},
            {"31 r000000000000", "40 r0000", "51 r0000"});
        row("a long one holds up the next", "", 0, {"0 ra00000020", "15 ra00000002"},
            {"83 r" + QByteArray(64, '0'), "92 r0000"});
        row("mute", "mute=50%:40ms", 0, {"0 ra00000002", "39 ra00000002"}, {});
        row("mute no more", "mute=50%:40ms", 0, {"0 ra00000002", "41 ra00000002"}, {"64 r0000"});
        row("late and overtaken", "late=50%:50ms", 0, {"0 ra00000006", "14 ra00000002"},
            {"37 r0000", "81 r000000000000"});
        row("late while another leaves", "late=50%:15ms", 0, {"0 ra00000006", "14 ra00000002"},
            {"37 r0000", "54 r000000000000"});
        row("twice", "double=100%", 0, {"0 ra00000002"}, {"23 r0000", "32 r0000"});
        row("faster than the line, which is caught up with", "", 0,
            {"0 " + QByteArray(2000, 'z'), "0 ra00000002"}, {"1023 r0000"});
        row("in two parts", "", 0, {"0 ra0000", "500 ~0002"}, {"516 r0000"});
        row("a part that nobody ends", "", 0, {"0 ra0000", "1008 ~0002"}, {});
    }
    void paces()
    {
        QFETCH(QByteArray, faults);
        QFETCH(int, turnaroundMs);
        QFETCH(QByteArrayList, requests);
        Memory memory;
        Controller controller(memory);
        Faults disturbing = faults.isEmpty() ? Faults() : faultsOf(faults.constData(), LateFirst);
        Pacing pacing(controller, disturbing, {10000, turnaroundMs});
        QByteArrayList replies;
        QByteArray reply;
        while (!requests.isEmpty() || pacing.nextNs() >= 0) {
            const qint64 requestNs =
                requests.isEmpty() ? -1 : requests.first().split(' ')[0].toLongLong() * 1000000;
            const bool sends =
                requestNs >= 0 && (pacing.nextNs() < 0 || requestNs <= pacing.nextNs());
            const qint64 now = sends ? requestNs : pacing.nextNs();
            if (sends)
                pacing.receive(partOf(requests.takeFirst().split(' ')[1]), now);
            for (const char byte : pacing.transmit(now)) {
                reply += byte;
                if (byte == '\x04') {
                    replies +=
                        QByteArray::number(now / 1000000) + ' ' + reply.mid(1, reply.size() - 4);
                    reply.clear();
                }
            }
        }
        QTEST(replies, "replies");
    }

    void holdsNoMoreRepliesThanALineWould()
    {
        Memory memory;
        Controller controller(memory);
        Faults none;
        Pacing pacing(controller, none, {10000, 0});
        pacing.receive(readD0.repeated(100), 0);
        const QByteArray first = pacing.transmit(23000000);
        QCOMPARE(first, zeroReply);
        QCOMPARE(first.size() + pacing.transmit(10000000000).size(), 64 * zeroReply.size());
        Pacing unpaced(controller, none, {0, 0});
        unpaced.receive(readD0 + framed("ra00000004") + readD0, 0);
        QCOMPARE(unpaced.transmit(0), zeroReply + "\x06r00000000F2\x04" + zeroReply);
    }
};

QTEST_GUILESS_MAIN(TestPlcLine)
#include "tst_plc_line.moc"
