// Long random days of a panel on a bad line, each repeatable by its seed: it monitors, writes and
// reads on condition while requests and replies get lost or damaged. Then the line heals, and the
// panel's books must balance with the controller's memory.
#include <QMap>
#include <QtTest>
#include <random>

#include "bench.h"

namespace {

enum { CyclicRead = 4, ConditionRead = 5, FirstWrite = 1000 };  // kinds of items

QString nameOf(const Range &range)
{
    return QString("%1#%2 %3 x%4")
        .arg(QString::number(range.station), range.name, QString::number(range.start),
             QString::number(range.count));
}

/** A panel with its books, the line, and the controller at the other end. */
class Day
{
public:
    explicit Day(quint32 seed) : random_(seed), limit_(QVector<int>{8, 20, 64, 127}[dice(4)])
    {
        bench_.init("7#0#0#3#" + QByteArray::number(limit_));
        monitor();
    }

    /** Something that panel and controller may do, then an exchange. */
    void go()
    {
        const int turn = dice(40);
        if (turn < 8) {
            write();
        } else if (turn < 10) {
            Range range = anyRange(dice(4));
            range.kind = ConditionRead;
            bench_.condition(range);
        } else if (!inFlight_ && turn == 10) {
            monitor();
        } else if (!inFlight_ && turn < 14) {
            move();
        }
        exchange();
    }

    /** No more faults: goes on until all queues are served and everything was polled again. */
    void heal()
    {
        badLine_ = false;
        polls_ = 0;
        for (int i = 0; i < 5000 && polls_ <= 2 * requests_; ++i)
            exchange();
        const int announced = counts.announced;
        const Range range{"D_W", 0, 200};
        bench_.condition(range);
        for (int i = 0; i < 100 && counts.announced == announced; ++i)
            exchange();
        if (counts.announced == announced || bench_.get(range) != bench_.held(range))
            bench_.flaws << "a condition read on a good line went wrong";
    }

    /** What does not balance after heal(); empty when all is well. */
    QStringList discrepancies()
    {
        QStringList list = bench_.flaws;
        for (const char device : plc::Memory::devices()) {
            for (int i = 0; i < plc::Memory::wordCount(device); ++i) {
                if (bench_.memory.word(device, i) != expected_.word(device, i))
                    list << QString("word %1 of %2 is wrong in the controller").arg(i).arg(device);
            }
        }
        for (const Range &range : monitored_) {
            if (bench_.get(range) != bench_.held(range))
                list << nameOf(range) + " is read wrong";
        }
        for (auto point = watched_.cbegin(); point != watched_.cend(); ++point) {
            if (reported_[point.key()] != bench_.held(point.value()))
                list << point.key() + ": a change was not reported";
        }
        for (const QString &piece : owed_.keys())
            list << "the write of " + piece + " was lost";
        return list.mid(0, 10);
    }

    struct Counts
    {
        int announced = 0, retries = 0, givenUp = 0;
    } counts;

private:
    struct Write
    {
        Range range;
        QByteArray values;
    };

    int dice(int sides) { return int(random_() % unsigned(sides)); }

    QByteArray randomValues(const Range &range)
    {
        QByteArray values(range.count * widthOf(range), '\0');
        for (char &byte : values)
            byte = char(isBitType(range.name) ? dice(2) : dice(256));
        return values;
    }

    /** A range of one of the four areas that the panel writes: so small that ranges often overlap.
     */
    Range anyRange(int area)
    {
        static const std::pair<const char *, int> areas[] = {
            {"D_W", 200}, {"M_W", 16}, {"M_bit", 256}, {"TX", 120}};
        Range range{areas[area].first, dice(areas[area].second)};
        range.station = 1 + dice(2);
        range.count = qMin(dice(2) ? 1 : 1 + dice(40), areas[area].second - range.start);
        return range;
    }

    void write()
    {
        if (owed_.size() > 100)
            return;  // far from the end of the queue, where the driver may drop a write
        Write write;
        write.range = dice(4) || writes_.isEmpty() ? anyRange(dice(4)) : writes_.last().range;
        write.range.kind = FirstWrite + int(writes_.size());
        write.values = randomValues(write.range);
        // A later write of the same piece takes its place in the queue: the latest one is owed.
        Range piece = write.range;
        const int end = piece.start + piece.count;
        const int longest = isBitType(piece.name) ? piece.count : limit_;
        for (; piece.start < end; piece.start += longest) {
            piece.count = qMin(longest, end - piece.start);
            owed_[nameOf(piece)] = piece.kind;
        }
        writes_ << write;
        bench_.write(write.range, write.values);
    }

    void monitor()
    {
        monitored_.clear();
        watched_.clear();
        reported_.clear();
        for (int i = 4 + dice(12); i > 0; --i)
            monitored_ << anyRange(dice(4));
        for (int i = 0; i < 8; ++i) {
            const Range point{dice(2) ? "P_W" : "P_bit", dice(64)};
            monitored_ << point;
            watched_[point.name + ' ' + QString::number(point.start)] = point;
        }
        requests_ = bench_.monitor(monitored_);
        for (auto point = watched_.cbegin(); point != watched_.cend(); ++point)
            reported_[point.key()] = bench_.get(point.value());
    }

    /** The controller changes something by itself: a word of P, or the top bit of a word of M. */
    void move()
    {
        const Range range = dice(2) ? Range{"P_W", dice(64)} : Range{"M_bit", dice(16) * 16 + 15};
        const QByteArray values = randomValues(range);
        putValues(&bench_.memory, range, values);
        putValues(&expected_, range, values);
    }

    /** What comes back for the frame: now and then nothing, a bit turned over, or a part. */
    QByteArray throughTheLine()
    {
        const int fate = badLine_ ? dice(100) : 100;
        if (fate < 6)
            return QByteArray();  // the request was lost
        QByteArray reply = bench_.answer();
        if (reply.isEmpty())
            return reply;  // refused, and the bench noticed
        const int at = dice(int(reply.size()));
        if (fate < 16)
            reply[at] = char(reply.at(at) ^ 1 << dice(8));
        else if (fate < 26)
            reply.truncate(fate < 20 ? at : 0);
        return reply;
    }

    int exchange()
    {
        if (!bench_.send()) {
            bench_.flaws << "nothing to send, though addresses are monitored";
            return 0;
        }
        const int result = bench_.reply(throughTheLine());
        counts.retries += result == 8;
        counts.givenUp += result == 2;
        book(result);

        const QStringList calls = bench_.calls;
        bench_.calls.clear();
        for (const QString &call : calls) {
            counts.announced += call.startsWith("done");
            if (watched_.contains(call))
                reported_[call] = bench_.get(watched_[call]);
        }
        return result;
    }

    /** Enters in the books what became of the request that was sent last. */
    void book(int result)
    {
        const VARIABLE &item = bench_.frame.var;
        const bool isWrite = item.kind >= FirstWrite;
        const bool firstOfTwo = isWrite && bench_.frame.readCount > 0;
        polls_ = item.kind == CyclicRead ? polls_ + 1 : 0;
        inFlight_ = result == 8 || (result == 1 && firstOfTwo);
        if (!isWrite || inFlight_)
            return;

        const Write &write = writes_[item.kind - FirstWrite];
        Range piece = write.range;
        const int offset = (item.startAddr - piece.start) * widthOf(piece);
        piece.start = item.startAddr;
        piece.count = item.count;
        settle(piece, write.values.mid(offset, piece.count * widthOf(piece)), result == 1);
        if (owed_.value(nameOf(piece)) == item.kind)
            owed_.remove(nameOf(piece));
    }

    /**
     * Acknowledged values are in the controller. Of others nobody knows: the request or only its
     * reply may have been lost, so the controller holds each of them or still what it held before.
     */
    void settle(const Range &range, const QByteArray &values, bool acknowledged)
    {
        for (int i = 0; i < range.count; ++i) {
            const Range point{range.name, range.start + i};
            const QByteArray value = values.mid(i * widthOf(range), widthOf(range));
            if (acknowledged || bench_.held(point) == value)
                putValues(&expected_, point, value);
        }
    }

    std::mt19937 random_;
    int limit_;  ///< block limit in words
    Bench bench_;
    plc::Memory expected_;     ///< the controller's memory by the panel's books
    QVector<Write> writes_;    ///< all that were made; their numbers travel as the kinds of items
    QMap<QString, int> owed_;  ///< for each piece of a write not settled yet, the latest such write
    QVector<Range> monitored_;
    QMap<QString, Range> watched_;        ///< points that only the controller changes, by callback
    QMap<QString, QByteArray> reported_;  ///< their values, read when a change was reported
    int requests_ = 0;                    ///< requests of a poll cycle
    int polls_ = 0;                       ///< poll requests since the last of another kind
    bool inFlight_ = false;               ///< the item that was sent last is not finished
    bool badLine_ = true;
};

}  // namespace

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
        QVERIFY(counts.announced > 30);
        QVERIFY(counts.retries > 500 && counts.givenUp > 10);
    }
};

QTEST_GUILESS_MAIN(Soak)
#include "tst_soak.moc"
