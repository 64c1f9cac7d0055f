// What gets queued for what the host asks: monitored keys as read blocks, condition reads and
// writes in pieces, the bounded queues, recipes as blocks.
#include <algorithm>
#include <random>

#include "panel.h"
#include "serviceForProtocol/recipe.h"

namespace {

/** One merging pass over ranges in weight order, written from the rule, not from the code. */
QList<Range> joined(const QList<Range> &sorted, int limit, int bridged)
{
    QList<Range> blocks;
    for (const Range &next : sorted) {
        const Range block = blocks.value(blocks.size() - 1);
        const int extent = next.start + next.count - block.start;
        const bool isContact = !next.name.contains('_');
        if (block.station != next.station || block.name != next.name || extent > limit ||
            next.start - (block.start + block.count) > bridged ||
            (isContact && block.start != next.start))
            blocks.append(next);
        else
            blocks.last().count = qMax(block.count, extent);
    }
    return blocks;
}

/** Recipe entries of the driver that is initialised with "7#...". */
QVector<_RCP_VAR_PRO> recipeEntries(const QString &text)
{
    QVector<_RCP_VAR_PRO> entries;
    for (const Range &range : ranges(text)) {
        entries.append(recordOf<_RCP_VAR_PRO>(range));
        entries.last().ownerKey = range.foreign ? 5 : 7;
        entries.last().bufIndex = range.place;
    }
    return entries;
}

QString blockTexts()
{
    QStringList texts;
    for (const _RCP_VAR_PRO &block : driver.rcpBlocks)
        texts.append(rangeText(block) + QString(" @%1").arg(block.bufIndex));
    return texts.join(", ");
}

}  // namespace

class PlanningTest : public QObject
{
    Q_OBJECT

private slots:
    void monitor_data()
    {
        table({"limit", "asked", "blocks"},
              {{"bits become the words that hold them", "64", "M_bit 1604 x21", "M_W 100 x2"},
               {"16 bits of one word", "64", "M_bit 1600 x16", "M_W 100 x1"},
               {"17 bits", "64", "M_bit 1600 x17", "M_W 100 x2"},
               {"a bit key and a word key of one device share a block", "64",
                "M_bit 1604 x21, M_W 101 x1", "M_W 100 x2"},
               {"keys that touch", "64", "D_W 0 x2, D_W 2 x3", "D_W 0 x5"},
               {"keys that overlap", "64", "D_W 0 x3, D_W 2 x3", "D_W 0 x5"},
               {"a key inside another", "64", "D_W 0 x9, D_W 2 x3, D_W 9 x1", "D_W 0 x10"},
               {"a gap is bridged", "10", "D_W 0 x2, D_W 5 x2", "D_W 0 x7"},
               {"up to the limit", "10", "D_W 0 x2, D_W 8 x2", "D_W 0 x10"},
               {"not beyond it", "10", "D_W 0 x2, D_W 9 x2", "D_W 0 x2, D_W 9 x2"},
               {"neighbours join before gaps are bridged", "10", "D_W 0 x2, D_W 9 x1, D_W 10 x3",
                "D_W 0 x2, D_W 9 x4"},
               {"overlap beyond the limit", "4", "D_W 0 x3, D_W 2 x3", "D_W 0 x3, D_W 2 x3"},
               {"any order in, address order out", "2", "D_W 5 x1, M_bit 0 x1, P_W 9 x1, D_W 1 x1",
                "P_W 9 x1, M_W 0 x1, D_W 1 x1, D_W 5 x1"},
               {"stations stay apart", "64", "2:D_W 1 x1, D_W 0 x1, 0:D_W 1 x1",
                "0:D_W 1 x1, D_W 0 x1, 2:D_W 1 x1"},
               {"types stay apart", "64", "D_W 0 x1, L_W 0 x1", "L_W 0 x1, D_W 0 x1"},
               {"contacts join at the same start", "3", "TX 5 x1, TX 5 x3", "TX 5 x3"},
               {"contacts within the limit only", "2", "TX 5 x1, TX 5 x3", "TX 5 x1, TX 5 x3"},
               {"equal weights keep their order", "2", "TX 5 x3, TX 5 x1", "TX 5 x3"},
               {"contacts side by side stay apart", "64", "CX 5 x1, CX 6 x1", "CX 5 x1, CX 6 x1"},
               {"a key beyond the limit is one block", "64", "D_W 0 x100", "D_W 0 x100"},
               {"a key beyond a frame is consecutive items", "64", "D_W 0 x300",
                "D_W 0 x127, D_W 127 x127, D_W 254 x46"},
               {"a block beyond a frame too", "200", "D_W 0 x100, D_W 100 x100, M_W 0 x1",
                "M_W 0 x1, D_W 0 x127, D_W 127 x73"},
               {"contacts beyond a frame", "64", "TX 3 x200", "TX 3 x127, TX 130 x73"},
               {"no limit to speak of", "2147483647", "D_W 0 x1, D_W 200 x1",
                "D_W 0 x127, D_W 127 x74"},
               {"limit 1", "1", "M_bit 1604 x21, M_W 101 x1", "M_W 100 x2, M_W 101 x1"},
               {"limit 0 joins nothing", "0", "D_W 5 x2, D_W 7 x1", "D_W 5 x2, D_W 7 x1"},
               {"nor does limit -9", "-9", "D_W 5 x2, D_W 7 x1", "D_W 5 x2, D_W 7 x1"},
               {"unknown types are not read", "64", "X_W 0 x1, d_w 0 x1, D_bit 0 x1, D_W 7 x1",
                "D_W 7 x1"},
               {"nor is less than one address", "64", "D_W 0 x0, D_W 1 x-1, M_bit 7 x0", ""},
               {"below 0", "64", "D_W -5 x3, D_W -2 x2", "D_W -5 x5"},
               {"at the largest number", "64", "D_W 2147483647 x1, D_W 2147483646 x1",
                "D_W 2147483646 x2"}});
    }
    void monitor()
    {
        QFETCH(QString, limit);
        QFETCH(QString, asked);
        QFETCH(QString, blocks);
        Panel::self().startWithLimit(limit);
        intf_addrMerge(keys("N_W 0 x1, N_W 500 x1"));  // replaced as a whole
        QCOMPARE(intf_addrMerge(keys(asked)), int(ranges(blocks).size()));
        QCOMPARE(rangeTexts(driver.readList), blocks);
        QCOMPARE(intf_addrMerge({}), 0);
        QVERIFY(driver.readList.isEmpty());
    }

    void scatteredKeys()
    {
        std::mt19937 random(20);
        const auto upTo = [&random](int most) { return int(random() % unsigned(most + 1)); };
        const char *const names[] = {"M_bit", "M_W", "D_W", "TX"};  // in weight order
        for (int round = 0; round < 400; ++round) {
            const int limit = 1 + upTo(30);
            QStringList asked;
            QList<Range> sorted;
            for (int n = upTo(40); n >= 0; --n) {
                const int type = upTo(3);
                const int unit = type == 0 ? 16 : 1;
                const int start = upTo(150 * unit), count = 1 + upTo(8 * unit);
                asked.append(rangeText(1 + upTo(1), names[type], start, count));
                sorted.append(ranges(asked.last()));
                if (type == 0) {
                    sorted.last().name = "M_W";
                    sorted.last().start = start / 16;
                    sorted.last().count = (start % 16 + count + 15) / 16;
                }
            }
            std::stable_sort(sorted.begin(), sorted.end(), [](const Range &a, const Range &b) {
                const QString order = "M_W D_W TX";
                return std::make_tuple(a.station, order.indexOf(a.name), a.start) <
                       std::make_tuple(b.station, order.indexOf(b.name), b.start);
            });
            QStringList blocks;
            for (const Range &block : joined(joined(sorted, limit, 0), limit, limit))
                blocks.append(rangeText(block.station, block.name, block.start, block.count));

            Panel::self().startWithLimit(QString::number(limit));
            QCOMPARE(intf_addrMerge(keys(asked.join(", "))), int(blocks.size()));
            QCOMPARE(rangeTexts(driver.readList), blocks.join(", "));
        }
    }

    void conditionRead_data()
    {
        table({"limit", "asked", "queue"},
              {{"words in pieces", "32", "D_W 0 x100",
                "D_W 0 x32, D_W 32 x32, D_W 64 x32, D_W 96 x4"},
               {"two full pieces", "4", "D_W 8 x8", "D_W 8 x4, D_W 12 x4"},
               {"a piece is at most a frame", "300", "D_W 0 x200", "D_W 0 x127, D_W 127 x73"},
               {"a contact is asked as 16", "64", "TX 5 x1", "TX 5 x16"},
               {"7 contacts a frame", "64", "TX 0 x20", "TX 0 x112, TX 7 x112, TX 14 x96"},
               {"bits as words", "64", "M_bit 1604 x21", "M_W 100 x2"},
               {"bits in pieces of limit * 8", "1", "M_bit 1604 x21",
                "M_W 100 x1, M_W 100 x2, M_W 101 x1"},
               {"limit 0 acts as 1", "0", "D_W 0 x3", "D_W 0 x1, D_W 1 x1, D_W 2 x1"},
               {"limit -4 acts as 1", "-4", "D_W 0 x2", "D_W 0 x1, D_W 1 x1"},
               {"twice behind the head: once", "64", "D_W 9 x1, D_W 0 x3, M_W 0 x3, D_W 0 x3",
                "D_W 9 x1, D_W 0 x3, M_W 0 x3"},
               {"the head may be in service", "64", "D_W 0 x3, D_W 0 x3, D_W 0 x3",
                "D_W 0 x3, D_W 0 x3"},
               {"other station, start or count", "64",
                "D_W 9 x1, D_W 0 x3, 2:D_W 0 x3, D_W 0 x2, D_W 1 x3",
                "D_W 9 x1, D_W 0 x3, 2:D_W 0 x3, D_W 0 x2, D_W 1 x3"},
               {"unknown types are not asked", "64", "X_W 0 x1, X_bit 0 x1, D_bit 0 x1", ""},
               {"nor is less than one address", "64", "D_W 0 x0, TX 0 x-1, M_bit 3 x0", ""}});
    }
    void conditionRead()
    {
        QFETCH(QString, limit);
        QFETCH(QString, asked);
        QFETCH(QString, queue);
        Panel::self().startWithLimit(limit);
        driver.lastCondVar = item("Z_W 1 x1");
        int kind = 0;
        for (const KEY_ADDRESS &key : keys(asked))
            QCOMPARE(intf_addConditionRead(key, ++kind), 1);
        QCOMPARE(rangeTexts(driver.condReadList), queue);

        // The item whose end will be announced waits in the queue and is of the latest request.
        const VARIABLE &last = driver.lastCondVar;
        const auto isLast = [&](const VARIABLE &queued) {
            return queued.kind == kind && rangeText(queued) == rangeText(last);
        };
        const QList<VARIABLE> &list = driver.condReadList;
        if (list.isEmpty())
            QCOMPARE(rangeText(last), QString("Z_W 1 x1"));
        else
            QVERIFY(last.kind == kind && std::any_of(list.begin(), list.end(), isLast));
    }

    void write_data()
    {
        table({"limit", "asked", "queue"},
              {{"words", "64", "D_W 100 x3", "D_W 100 x3"},
               {"words in pieces", "64", "D_W 0 x150", "D_W 0 x64, D_W 64 x64, D_W 128 x22"},
               {"bits in pieces of limit * 8", "2", "M_bit 1600 x20",
                "M_bit 1600 x16, M_bit 1616 x4"},
               {"contacts", "1", "TX 3 x10", "TX 3 x8, TX 11 x2"},
               {"a piece is at most a frame", "300", "D_W 0 x300",
                "D_W 0 x127, D_W 127 x127, D_W 254 x46"},
               {"more words than a value buffer", "100", "D_W 0 x513",
                "D_W 0 x100, D_W 100 x100, D_W 200 x100, D_W 300 x100, D_W 400 x100, D_W 500 x13"},
               {"more bits than a value buffer", "300", "M_bit 0 x1500",
                "M_bit 0 x1024, M_bit 1024 x476"},
               {"limit 0 acts as 1", "0", "D_W 0 x3", "D_W 0 x1, D_W 1 x1, D_W 2 x1"},
               {"limit -4 acts as 1", "-4", "D_W 0 x2", "D_W 0 x1, D_W 1 x1"},
               {"no limit to speak of", "2147483647", "M_bit 0 x20", "M_bit 0 x20"},
               {"unknown types are not sent", "64", "X_W 0 x1, X_bit 0 x1, d_w 0 x1", ""},
               {"nor is less than one address", "64", "D_W 0 x0, TX 0 x-1, M_bit 3 x0", ""}});
    }
    void write()
    {
        QFETCH(QString, limit);
        QFETCH(QString, asked);
        QByteArray values;
        for (int i = 0; i < 4096; ++i)
            values.append(char(i % 251));
        unsigned char *bytes = Panel::bytes(values);
        Panel::self().startWithLimit(limit);
        for (const Range &what : ranges(asked))
            QCOMPARE(intf_setData(1, what.name, what.start, what.count, bytes, 5), 1);
        QTEST(rangeTexts(driver.writeList), "queue");
        for (const VARIABLE &queued : driver.writeList) {
            const int size = elementBytes(queued.regName);
            const int offset = (queued.startAddr - ranges(asked).first().start) * size;
            QVERIFY(std::memcmp(queued.valueBuf, bytes + offset, size_t(queued.count * size)) == 0);
            QCOMPARE(queued.kind, 5);
        }
    }

    void boundedQueue()
    {
        for (const bool writes : {true, false}) {
            Panel::self().start();
            const auto ask = [writes](int word, unsigned char kind) {
                const unsigned char values[] = {kind, 0};
                if (writes)
                    intf_setData(1, "D_W", word, 1, values, kind);
                else
                    intf_addConditionRead(keys(QString("D_W %1 x1").arg(word)).first(), kind);
            };
            for (int word = 0; word < 513; ++word)
                ask(word, 1);
            ask(9000, 2);
            ask(200, 4);  // waits already: takes its own place
            ask(0, 5);    // the head is never replaced, so this is one more
            const QList<VARIABLE> &queue = writes ? driver.writeList : driver.condReadList;
            QCOMPARE(int(queue.size()), 513);
            for (int i = 0; i < 513; ++i) {
                QCOMPARE(queue.at(i).startAddr, i % 512);
                QCOMPARE(queue.at(i).kind, i == 200 ? 4 : i == 512 ? 5 : 1);
                QCOMPARE(int(queue.at(i).valueBuf[0]), writes ? queue.at(i).kind : 0);
            }
        }
    }

    void recipe_data()
    {
        // Groups: per block, its first entry in address order.
        table(
            {"limit", "asked", "kept", "blocks", "groups"},
            {{"address order, place of the first", "64", "D_W 12 x1 @5, D_W 10 x2 @0", "2",
              "D_W 10 x3 @0", "0"},
             {"gaps are not bridged", "64", "D_W 10 x2 @0, D_W 20 x2 @2", "2",
              "D_W 10 x2 @0, D_W 20 x2 @2", "0 1"},
             {"groups count entries", "4", "D_W 0 x2 @0, D_W 2 x2 @2, D_W 50 x1 @9", "3",
              "D_W 0 x4 @0, D_W 50 x1 @9", "0 2"},
             {"not beyond the limit", "3", "D_W 0 x2 @0, D_W 2 x2 @2", "2",
              "D_W 0 x2 @0, D_W 2 x2 @2", "0 1"},
             {"overlap", "64", "D_W 0 x3 @0, D_W 2 x3 @10", "2", "D_W 0 x5 @0", "0"},
             {"entries of others", "64", "other:D_W 0 x1 @0, D_W 5 x1 @1", "1", "D_W 5 x1 @1", "0"},
             {"stations apart", "64", "2:D_W 1 x1 @0, D_W 0 x1 @1", "2",
              "D_W 0 x1 @1, 2:D_W 1 x1 @0", "0 1"},
             {"types apart", "64", "D_W 0 x1 @0, M_W 0 x1 @1", "2", "M_W 0 x1 @1, D_W 0 x1 @0",
              "0 1"},
             {"bits stay bits", "64", "M_bit 0 x20 @0, M_bit 20 x5 @20, M_W 0 x1 @50", "3",
              "M_W 0 x1 @50, M_bit 0 x25 @0", "0 1"},
             {"contacts join at the same start", "64", "TX 5 x1 @0, TX 6 x1 @1, TX 6 x2 @2", "3",
              "TX 5 x1 @0, TX 6 x2 @1", "0 1"},
             {"a block is at most a frame", "200", "D_W 0 x127 @0, D_W 127 x73 @127", "2",
              "D_W 0 x127 @0, D_W 127 x73 @127", "0 1"},
             {"an entry beyond a frame is cut, with its place", "64", "D_W 0 x300 @10", "1",
              "D_W 0 x127 @10, D_W 127 x127 @137, D_W 254 x46 @264", "0 0 0"},
             {"limit 0 joins nothing", "0", "D_W 0 x1 @0, D_W 1 x1 @1", "2",
              "D_W 0 x1 @0, D_W 1 x1 @1", "0 1"},
             {"no such address", "64", "X_W 0 x1 @0, D_W 1 x1 @1, M_W 0 x0 @0", "1", "D_W 1 x1 @1",
              "0"}});
    }
    void recipe()
    {
        QFETCH(QString, limit);
        QFETCH(QString, asked);
        Panel::self().startWithLimit(limit);
        QTEST(QString::number(intf_setRcpAddress(recipeEntries(asked))), "kept");
        QTEST(blockTexts(), "blocks");
        QStringList groups;
        for (const int first : driver.rcpGroupStarts)
            groups.append(QString::number(first));
        QTEST(groups.join(' '), "groups");
    }

    void recipeItem_data()
    {
        // Unit n of the recipe buffer holds the bytes n and 0x40 + n; "-" is an item to read with.
        table({"asked", "item", "values"},
              {{"words from consecutive units", "D_W 12 x1 @9, D_W 10 x2 @4", "D_W 10 x3",
                "044405450646"},
               {"bits from the units of their entries", "M_bit 20 x2 @0, M_bit 22 x1 @0",
                "M_bit 20 x3", "000100"},
               {"contacts", "TX 20 x2 @0", "TX 20 x2", "0001"},
               {"words to read", "D_W 10 x2 @4", "D_W 10 x2", "-"},
               {"bits are read as words", "M_bit 20 x15 @0", "M_W 1 x2", "-"}});
    }
    void recipeItem()
    {
        QFETCH(QString, asked);
        QFETCH(QString, values);
        Panel &panel = Panel::self();
        panel.start();
        for (int n = 0; n < 16; ++n) {
            panel.buffer[2 * n] = char(n);
            panel.buffer[2 * n + 1] = char(0x40 + n);
        }
        intf_setRcpAddress(recipeEntries(asked));
        driver.rcpIndex = 0;
        VARIABLE var = item("D_W 0 x2");
        std::memset(var.valueBuf, 0xFF, sizeof var.valueBuf);
        rcpAddrToVar(0, var, values == "-" ? 0 : 1);
        QTEST(rangeText(var), "item");
        QCOMPARE(var.kind, 9);
        QCOMPARE(QByteArray(reinterpret_cast<char *>(var.valueBuf), ValueBytes),
                 QByteArray::fromHex(values.toLatin1()).leftJustified(ValueBytes, '\0'));
    }
};

QTEST_GUILESS_MAIN(PlanningTest)
#include "tst_planning.moc"
