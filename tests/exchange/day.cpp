// The panel's day: what it does, what the line does to it, and the books.
#include "day.h"

namespace {

enum { CyclicRead = 4, ConditionRead = 5, FirstWrite = 1000 };  // kinds of items

QString nameOf(const Range &range)
{
    return QString("%1#%2 %3 x%4")
        .arg(QString::number(range.station), range.name, QString::number(range.start),
             QString::number(range.count));
}

}  // namespace

Day::Day(quint32 seed) : random_(seed), limit_(QVector<int>{8, 20, 64, 127}[dice(4)])
{
    bench_.init("7#0#0#3#" + QByteArray::number(limit_));
    monitor();
}

QByteArray Day::randomValues(const Range &range)
{
    QByteArray values(range.count * widthOf(range), '\0');
    for (char &byte : values)
        byte = char(isBitType(range.name) ? dice(2) : dice(256));
    return values;
}

/** A range of one of the four areas that the panel writes: so small that ranges often overlap. */
Range Day::anyRange(int area)
{
    static const std::pair<const char *, int> areas[] = {
        {"D_W", 200}, {"M_W", 16}, {"M_bit", 256}, {"TX", 120}};
    Range range{areas[area].first, dice(areas[area].second)};
    range.station = 1 + dice(2);
    range.count = qMin(dice(2) ? 1 : 1 + dice(40), areas[area].second - range.start);
    return range;
}

void Day::write()
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

void Day::monitor()
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
void Day::move()
{
    const Range range = dice(2) ? Range{"P_W", dice(64)} : Range{"M_bit", dice(16) * 16 + 15};
    const QByteArray values = randomValues(range);
    putValues(&bench_.memory, range, values);
    putValues(&expected_, range, values);
}

/** A transfer from request to end; when the line fails it, the panel does not try again. */
void Day::recipe(bool push)
{
    const QByteArray blank(2 * Bench::RecipeUnits, '\xEE');
    QByteArray filled = blank;
    QVector<Write> entries;
    int unit = 0;
    for (const int area : {0, 2, 3}) {  // of different types, so that none touches another
        Range range = anyRange(area);
        range.unit = unit + dice(3);
        unit = range.unit + range.count;
        entries << Write{range, push ? randomValues(range) : bench_.held(range)};
        filled.replace(2 * range.unit, 2 * range.count, asUnits(range, entries.last().values));
    }
    memcpy(bench_.buffer.get(), (push ? filled : blank).constData(), size_t(blank.size()));
    bench_.recipe({entries[0].range, entries[1].range, entries[2].range});

    unsigned char &request = bench_.shared[push ? RecipeWriteRequest : RecipeReadRequest];
    request = 1;
    inRecipe_ = true;
    bool complete = true;
    for (int i = 0; i < 1000 && request == 1; ++i)
        complete = exchange() != 2 && complete;
    inRecipe_ = false;
    ++(push ? counts.pushed : counts.pulled);
    for (const Write &entry : entries) {
        if (push)
            settle(entry.range, entry.values, complete);
    }
    if (request == 1)
        bench_.flaws << "a recipe transfer does not end";
    if (!push && complete && memcmp(bench_.buffer.get(), filled.constData(), size_t(filled.size())))
        bench_.flaws << "a recipe was read wrong";
}

/** What comes back for the frame: now and then nothing, a bit turned over, or a part. */
QByteArray Day::throughTheLine()
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

int Day::exchange()
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
void Day::book(int result)
{
    const VARIABLE &item = bench_.frame.var;
    const bool isWrite = item.kind >= FirstWrite && !inRecipe_;
    const bool firstOfTwo = isWrite && bench_.frame.readCount > 0;
    polls_ = item.kind == CyclicRead && !inRecipe_ ? polls_ + 1 : 0;
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
 * Acknowledged values are in the controller. Of others nobody knows: the request or only its reply
 * may have been lost, so the controller holds each of them or still what it held before.
 */
void Day::settle(const Range &range, const QByteArray &values, bool acknowledged)
{
    for (int i = 0; i < range.count; ++i) {
        const Range point{range.name, range.start + i};
        const QByteArray value = values.mid(i * widthOf(range), widthOf(range));
        if (acknowledged || bench_.held(point) == value)
            putValues(&expected_, point, value);
    }
}

void Day::go()
{
    const int turn = dice(40);
    if (turn < 8) {
        write();
    } else if (turn < 10) {
        Range range = anyRange(dice(4));
        range.kind = ConditionRead;
        bench_.condition(range);
    } else if (!inFlight_ && turn < 12) {
        recipe(turn == 10);
    } else if (!inFlight_ && turn == 12) {
        monitor();
    } else if (!inFlight_ && turn < 16) {
        move();
    }
    exchange();
}

void Day::heal()
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

QStringList Day::discrepancies()
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
