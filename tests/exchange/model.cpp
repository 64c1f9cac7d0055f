// The plain driver.
#include "model.h"

#include <algorithm>
#include <climits>

namespace {

const int AllBits = 0xFFFF;

QString areaOf(const Range &range)
{
    return range.name.section('_', 0, 0);
}

bool isWords(const Range &range)
{
    return range.name.endsWith("_W");
}

bool isBits(const Range &range)
{
    return range.name.endsWith("_bit");
}

char deviceOf(const Range &range)
{
    return plc::Memory::letter(areaOf(range).toLatin1());
}

bool areContacts(const Range &range)
{
    return !isWords(range) && !isBits(range);
}

int wordsFrom(int bit, int count)
{
    return (bit % 16 + count + 15) / 16;
}

/** The words that hold the bits; a range of anything else as it is. */
Range inWords(Range range)
{
    if (isBits(range)) {
        range.count = wordsFrom(range.start, range.count);
        range.start /= 16;
        range.name = areaOf(range) + "_W";
    }
    return range;
}

bool isSame(const Range &a, const Range &b)
{
    return a.station == b.station && a.name == b.name && a.start == b.start && a.count == b.count;
}

int valueAt(const Range &range, const QByteArray &values, int i)
{
    const auto byte = [&](int at) { return int(static_cast<unsigned char>(values.at(at))); };
    return isWords(range) ? byte(2 * i) | byte(2 * i + 1) << 8 : byte(i);
}

/** The order of blocks: by station, type and address. */
std::tuple<int, int, int> placeOf(const Range &range)
{
    const QStringList types = QString("M_W D_W M_bit TX").split(' ');
    return std::make_tuple(range.station, int(types.indexOf(range.name)), range.start);
}

Ranges piecesOf(const Range &range, int most)
{
    Ranges pieces;
    for (int at = 0; at < range.count; at += most) {
        pieces.push_back(range);
        pieces.back().start += at;
        pieces.back().count = qMin(most, range.count - at);
    }
    return pieces;
}

void sortByPlace(Ranges &ranges)
{
    std::stable_sort(ranges.begin(), ranges.end(),
                     [](const Range &a, const Range &b) { return placeOf(a) < placeOf(b); });
}

/** Makes `block` reach over `next` as well; false when they stay apart. */
bool join(Range &block, const Range &next, int gapLimit, int limit)
{
    const int extent = next.start + next.count - block.start;
    if (block.station != next.station || block.name != next.name || extent > limit ||
        next.start - block.start - block.count > gapLimit ||
        (areContacts(block) && block.start != next.start))
        return false;
    block.count = qMax(block.count, extent);
    return true;
}

Ranges joined(const Ranges &ranges, int gapLimit, int limit)
{
    Ranges blocks;
    for (const Range &next : ranges)
        if (blocks.empty() || !join(blocks.back(), next, gapLimit, limit))
            blocks.push_back(next);
    return blocks;
}

/** What the entries of a block span. */
Range spanOf(const Ranges &entries)
{
    return joined(entries, 0, INT_MAX).front();
}

}  // namespace

Model::Unit &Model::unitAt(const Range &range, int address)
{
    return units_[std::make_tuple(range.station, areaOf(range),
                                  isBits(range) ? address / 16 : address)];
}

void Model::report(int station, const QString &name, int address)
{
    reports << (station == 1 ? QString() : QString("7 %1 ").arg(station)) + name + ' ' +
                   QString::number(address);
}

/** Of the bits those that are monitored and changed; the word whether it changed or not. */
void Model::reportWord(const Range &range, int word, const Unit &unit, int changed)
{
    for (int bit = 0; bit < 16; ++bit)
        if (unit.monitoredBits >> bit & changed >> bit & 1)
            report(range.station, areaOf(range) + "_bit", word * 16 + bit);
    if (unit.isMonitored)
        report(range.station, areaOf(range) + "_W", word);
}

int Model::monitor(const Ranges &keys)
{
    for (auto &at : units_) {
        at.second.isMonitored = false;
        at.second.monitoredBits = at.second.marks = 0;
    }
    blocks_.clear();
    nextBlock_ = 0;
    for (const Range &key : keys) {
        for (int a = key.start; a < key.start + key.count; ++a) {
            if (isBits(key))
                unitAt(key, a).monitoredBits |= 1U << a % 16;
            else
                unitAt(key, a).isMonitored = true;
        }
        blocks_.push_back(inWords(key));
    }
    sortByPlace(blocks_);
    blocks_ = joined(joined(blocks_, 0, limit_), limit_, limit_);
    return int(blocks_.size());
}

void Model::enqueue(Queue &queue, const Item &item)
{
    // Never the head, which may be on its way.
    for (size_t i = queue.size(); i-- > 1;) {
        if (isSame(queue[i].range, item.range)) {
            queue[i] = item;
            return;
        }
    }
    queue.push_back(item);
}

void Model::condition(const Range &range)
{
    // 127 words a frame, and 16 of them asked for each contact.
    const int most = areContacts(range) ? 127 / 16 : isBits(range) ? 8 * limit_ : limit_;
    for (Range piece : piecesOf(range, most)) {
        piece.count *= areContacts(range) ? 16 : 1;
        latestCondition_ = inWords(piece);
        enqueue(conditions_, {latestCondition_, QByteArray(), Ranges()});
    }
}

int Model::recipe(Ranges entries)
{
    item_.entries.clear();  // what is being read is nothing of this recipe's
    isRefused_ = entries.empty();
    if (isRefused_)
        return 0;
    sortByPlace(entries);
    recipe_.clear();
    Range block;
    for (const Range &entry : entries) {
        if (recipe_.empty() || !join(block, entry, 0, limit_)) {
            recipe_.push_back(Ranges());
            block = entry;
        }
        recipe_.back().push_back(entry);
    }
    return int(entries.size());
}

void Model::write(const Range &range, const QByteArray &values)
{
    if (!keepsWrites_) {
        const int width = widthOf(range);
        for (const Range &piece : piecesOf(range, isWords(range) ? limit_ : 8 * limit_))
            enqueue(writes_,
                    {piece, values.mid((piece.start - range.start) * width, piece.count * width),
                     Ranges()});
    }
    const auto alike = std::count_if(writes_.begin(), writes_.end(), [&range](const Item &item) {
        return isSame(item.range, range);
    });
    for (int i = 0; i < range.count; ++i) {
        const int a = range.start + i;
        const int value = valueAt(range, values, i);
        Unit &unit = unitAt(range, a);
        const int shown = unit.shown();
        const int bit = a % 16;
        int next = value;
        if (isBits(range)) {
            next = (shown & ~(1 << bit)) | (value == 1) << bit;
            // A second mark when its like is at the head: two ends will come.
            if (!(unit.marks >> 2 * bit & 1))
                unit.marks |= 1U << 2 * bit;
            else if (alike == 2)
                unit.marks |= 2U << 2 * bit;
        }
        const bool isInWord = isWords(range) || isBits(range);
        if (shown != next && isInWord)
            reportWord(range, isBits(range) ? a / 16 : a, unit, shown ^ next);
        else if (shown != next)
            report(range.station, range.name, a);
        unit.written = next;
        unit.isWritten = true;
    }
}

QByteArray Model::get(const Range &range)
{
    QByteArray out;
    for (int a = range.start; a < range.start + range.count; ++a) {
        const int shown = unitAt(range, a).shown();
        out += char(isBits(range) ? shown >> a % 16 & 1 : shown);
        if (isWords(range))
            out += char(shown >> 8);
    }
    return out;
}

void Model::takeRecipeBlock()
{
    state_ = asked[0] ? RecipeWrite : RecipeRead;
    const Ranges &entries = recipe_[recipeBlock_];
    const Range block = spanOf(entries);
    if (state_ == RecipeRead) {
        item_ = {inWords(block), QByteArray(), entries};
        return;
    }
    item_ = {block, QByteArray(block.count * widthOf(block), '\0'), Ranges()};
    // Words follow those of the first entry, each bit stands where its own entry has it.
    if (isWords(block))
        std::copy_n(&buffer[size_t(2 * entries.front().unit)], 2 * block.count,
                    item_.values.begin());
    for (const Range &entry : entries)
        for (int i = 0; i < entry.count && !isWords(block); ++i)
            item_.values[entry.start - block.start + i] =
                buffer[size_t(2 * (entry.unit + i))] ? '\1' : '\0';
}

/** False when there is nothing to send. */
bool Model::takeItem()
{
    // Refused, or taken back by the panel: the next transfer begins at its first block.
    if (isRefused_ || !(asked[0] || asked[1])) {
        asked[0] = asked[1] = 0;
        recipeBlock_ = 0;
    }
    isQueueHead_ = false;
    if (asked[0] || asked[1]) {
        if (recipeBlock_ < recipe_.size())
            takeRecipeBlock();  // otherwise the last item is sent again
    } else if (!writes_.empty() && inARow_ < 10) {
        state_ = Write;
        item_ = writes_.front();
        isQueueHead_ = true;
        ++inARow_;
    } else if (!conditions_.empty() && inARow_ < 3) {
        state_ = Condition;
        item_ = conditions_.front();
        isQueueHead_ = true;
        ++inARow_;
    } else {
        inARow_ = 0;
        state_ = blocks_.empty() ? Idle : Cyclic;
        if (state_ == Cyclic)
            item_ = {blocks_[nextBlock_], QByteArray(), Ranges()};
    }
    return state_ != Idle;
}

QString Model::request()
{
    if (frames_.empty()) {
        if (!takeItem())
            return "-";
        const Range &range = item_.range;
        const int word = isWords(range) ? range.start : range.start / 16;
        const bool areWords = isWords(range) || !isWriting();
        const int words = areWords ? range.count : wordsFrom(range.start, range.count);
        if (!isWriting())
            frames_ = {{'r', word, words}};
        else if (isWords(range))
            frames_ = {{'w', word, words}};
        else if (range.count == 1)
            frames_ = {{item_.values.at(0) ? 'o' : 'n', word, 1}};
        else
            frames_ = {{'r', word, words}, {'w', word, words}};
    }
    const Frame &frame = frames_.front();
    const int station = item_.range.station;
    return (station == 1 ? QString() : QString("%1#").arg(station)) + frame.command +
           areaOf(item_.range) + QString::number(frame.word) +
           (frame.words == 1 ? QString() : QString("x%1").arg(frame.words));
}

int Model::good()
{
    const Frame frame = frames_.front();
    const Range &range = item_.range;
    QVector<int> words;
    for (int i = 0; i < frame.words; ++i)
        words << memory.word(deviceOf(range), frame.word + i);
    if (frame.command == 'r' && !isWriting()) {
        storeRead(words);
        copyRecipe(words);
    } else if (frame.command == 'r') {
        merged_ = words;
    } else {
        if (!isWords(range) && range.count > 1)
            words = merged_;
        for (int i = 0; i < range.count; ++i) {
            const int value = valueAt(range, item_.values, i);
            int &word = words[isWords(range) ? i : (range.start % 16 + i) / 16];
            const int bit = 1 << (range.start + i) % 16;
            word = isWords(range) ? value : value ? word | bit : word & ~bit;
        }
        for (int i = 0; i < frame.words; ++i)
            memory.setWord(deviceOf(range), frame.word + i, quint16(words[i]));
        settle(true);
    }
    failures_ = 0;
    frames_.pop_front();
    if (frames_.empty())
        finish(false);
    return 1;
}

int Model::bad()
{
    if (++failures_ < tries_)
        return 8;
    settle(false);
    failures_ = 0;
    frames_.clear();
    finish(true);
    return 2;
}

void Model::storeRead(const QVector<int> &words)
{
    const Range &range = item_.range;
    for (int i = 0; i < words.size(); ++i) {
        const int bit = range.start % 16 + i;
        const int value = isWords(range) ? words[i] : words[bit / 16] >> bit % 16 & 1;
        const int a = range.start + i;
        Unit &unit = unitAt(range, a);
        // What was read is compared, not what shows.
        if (unit.read != value) {
            if (!unit.marks || writes_.empty())
                unit.isWritten = false;
            if (isWords(range))
                reportWord(range, a, unit, unit.read ^ value);
            else if (unit.isMonitored)
                report(range.station, range.name, a);
        }
        unit.read = value;
    }
}

void Model::copyRecipe(const QVector<int> &words)
{
    for (const Range &entry : item_.entries) {
        for (int i = 0; i < entry.count; ++i) {
            // From the first bit of the words read; contacts are in the word that holds them.
            const int bit = areContacts(entry) ? entry.start + i - item_.range.start / 16 * 16
                                               : entry.start + i - item_.range.start * 16;
            const int value = isWords(entry) ? words[entry.start + i - item_.range.start]
                                             : words[bit / 16] >> bit % 16 & 1;
            buffer[size_t(2 * (entry.unit + i))] = static_cast<unsigned char>(value);
            buffer[size_t(2 * (entry.unit + i) + 1)] = static_cast<unsigned char>(value >> 8);
            reports << QString("RWI %1").arg(entry.unit + i);
        }
    }
}

/** A write from the queue; one that is sent again has been settled. */
void Model::settle(bool ok)
{
    if (state_ != Write || !isQueueHead_)
        return;
    const Range &range = item_.range;
    for (int i = 0; i < range.count; ++i) {
        const int a = range.start + i;
        Unit &unit = unitAt(range, a);
        const int bit = a % 16;
        if (isBits(range)) {
            unit.marks &= ~(unit.marks >> 2 * bit & 1 ? 1U << 2 * bit : 2U << 2 * bit);
            unit.isWritten = unit.isWritten && unit.marks;
            if (ok)
                unit.read = (unit.read & ~(1 << bit)) | (unit.written & 1 << bit);
            if (!unit.isWritten)
                reportWord(range, a / 16, unit, AllBits);
            continue;
        }
        unit.isWritten = false;
        if (ok)
            unit.read = unit.written;
        else if (isWords(range))
            reportWord(range, a, unit, unit.written ^ unit.read);
        else
            report(range.station, range.name, a);
    }
}

void Model::finish(bool failed)
{
    if (state_ == RecipeWrite || state_ == RecipeRead) {
        if (failed || ++recipeBlock_ >= recipe_.size()) {
            recipeBlock_ = 0;
            asked[state_ == RecipeRead] = 0;
        }
    } else if (state_ == Write && isQueueHead_) {
        writes_.pop_front();
    } else if (state_ == Condition && isQueueHead_) {
        if (isSame(conditions_.front().range, latestCondition_))
            reports << (failed ? "done -1" : "done 0");
        if (failed)
            conditions_.clear();
        else
            conditions_.pop_front();
    } else if (state_ == Cyclic && blocks_.size() > 1) {
        nextBlock_ = (nextBlock_ + 1) % blocks_.size();
    }
}
