// What gets queued for what the host asks: monitored keys as read blocks, condition reads and
// writes in pieces, the bounded queues, recipes as blocks.
#include "panel.h"
#include "serviceForProtocol/recipe.h"

namespace {

/** Recipe entries of the driver that is initialised with "7#...". */
QVector<_RCP_VAR_PRO> recipeEntries(const QString &text)
{
    QVector<_RCP_VAR_PRO> entries;
    for (const Range &range : ranges(text)) {
        entries.append(recordOf<_RCP_VAR_PRO>(range));
        entries.last().ownerKey = 7;
        entries.last().bufIndex = range.place;
    }
    return entries;
}

}  // namespace

class PlanningTest : public QObject
{
    Q_OBJECT

private slots:
    void queued_data()
    {
        table(
            {"limit", "asked", "queue"},
            {{"a bit key and a word key of one device share a block", "64",
              "monitor M_bit 1604 x21, M_W 101", "M_W 100 x2"},
             {"keys that touch or overlap", "64", "monitor D_W 0 x2, D_W 2 x3, D_W 3 x4",
              "D_W 0 x7"},
             {"a key inside another", "64", "monitor D_W 0 x9, D_W 2 x3, D_W 9", "D_W 0 x10"},
             {"up to the limit", "10", "monitor D_W 0 x2, D_W 8 x2", "D_W 0 x10"},
             {"not beyond it", "10", "monitor D_W 0 x2, D_W 9 x2", "D_W 0 x2, D_W 9 x2"},
             {"neighbours join before gaps are bridged", "10", "monitor D_W 0 x2, D_W 9, D_W 10 x3",
              "D_W 0 x2, D_W 9 x4"},
             {"overlap beyond the limit", "4", "monitor D_W 0 x3, D_W 2 x3", "D_W 0 x3, D_W 2 x3"},
             {"any order in, address order out", "2", "monitor D_W 5, M_bit 0, P_W 9, D_W 1",
              "P_W 9 x1, M_W 0 x1, D_W 1 x1, D_W 5 x1"},
             {"stations and types stay apart", "64", "monitor 2:D_W 1, D_W 0, 0:D_W 1, L_W 0",
              "0:D_W 1 x1, L_W 0 x1, D_W 0 x1, 2:D_W 1 x1"},
             {"contacts join at the same start", "3", "monitor TX 5, TX 5 x3", "TX 5 x3"},
             {"contacts within the limit only", "2", "monitor TX 5, TX 5 x3", "TX 5 x1, TX 5 x3"},
             {"equal weights keep their order", "2", "monitor TX 5 x3, TX 5", "TX 5 x3"},
             {"contacts side by side stay apart", "64", "monitor CX 5, CX 6", "CX 5 x1, CX 6 x1"},
             {"a key beyond the limit is one block", "64", "monitor D_W 0 x100", "D_W 0 x100"},
             {"a key beyond a frame is consecutive items", "64", "monitor D_W 0 x300",
              "D_W 0 x127, D_W 127 x127, D_W 254 x46"},
             {"a block beyond a frame too", "200", "monitor D_W 0 x100, D_W 100 x100, M_W 0",
              "M_W 0 x1, D_W 0 x127, D_W 127 x73"},
             {"contacts beyond a frame", "64", "monitor TX 3 x200", "TX 3 x127, TX 130 x73"},
             {"no limit to speak of", "2147483647", "monitor D_W 0, D_W 200",
              "D_W 0 x127, D_W 127 x74"},
             {"limit 0 joins nothing", "0", "monitor D_W 5 x2, D_W 7", "D_W 5 x2, D_W 7 x1"},
             {"no such address", "64", "monitor X_W 0, d_w 0, D_bit 0, D_W 0 x0, D_W 1 x-1, D_W 7",
              "D_W 7 x1"},
             {"below 0", "64", "monitor D_W -5 x3, D_W -2 x2", "D_W -5 x5"},
             {"at the largest number", "64", "monitor D_W 2147483647, D_W 2147483646",
              "D_W 2147483646 x2"},
             {"condition reads of at most a frame", "300", "condition D_W 0 x200",
              "D_W 0 x127, D_W 127 x73"},
             {"7 contacts a frame", "64", "condition TX 0 x20", "TX 0 x112, TX 7 x112, TX 14 x96"},
             {"bits as words, in pieces of limit * 8", "1", "condition M_bit 1604 x21",
              "M_W 100 x1, M_W 100 x2, M_W 101 x1"},
             {"twice behind the head: once", "64", "condition D_W 9, D_W 0 x3, M_W 0 x3, D_W 0 x3",
              "D_W 9 x1, D_W 0 x3, M_W 0 x3"},
             {"other station, start or count", "64",
              "condition D_W 9, D_W 0 x3, 2:D_W 0 x3, D_W 0 x2, D_W 1 x3",
              "D_W 9 x1, D_W 0 x3, 2:D_W 0 x3, D_W 0 x2, D_W 1 x3"},
             {"no such condition read", "64",
              "condition X_W 0, X_bit 0, D_bit 0, D_W 0 x0, TX 0 x-1, M_bit 3 x0", ""},
             {"bit writes in pieces of limit * 8", "2", "write M_bit 1600 x20",
              "M_bit 1600 x16, M_bit 1616 x4"},
             {"writes of at most a frame", "300", "write D_W 0 x300",
              "D_W 0 x127, D_W 127 x127, D_W 254 x46"},
             {"more words than a value buffer", "100", "write D_W 0 x513",
              "D_W 0 x100, D_W 100 x100, D_W 200 x100, D_W 300 x100, D_W 400 x100, D_W 500 x13"},
             {"more bits than a value buffer", "300", "write M_bit 0 x1500",
              "M_bit 0 x1024, M_bit 1024 x476"},
             {"a write without limit", "2147483647", "write M_bit 0 x20", "M_bit 0 x20"},
             {"no such write", "64", "write X_W 0, X_bit 0, d_w 0, D_W 0 x0, TX 0 x-1, M_bit 3 x0",
              ""}});
    }
    void queued()
    {
        QFETCH(QString, limit);
        QFETCH(QString, asked);
        Panel::self().start(limit);
        intf_addrMerge(keys("N_W 0, N_W 500"));  // replaced as a whole
        QByteArray values;
        for (int i = 0; i < 4096; ++i)
            values.append(char(i % 251));
        const QString verb = asked.section(' ', 0, 0);
        const QList<KEY_ADDRESS> all = keys(asked.section(' ', 1));
        const int blocks = intf_addrMerge(verb == "monitor" ? all : QList<KEY_ADDRESS>());
        QCOMPARE(blocks, int(driver.readList.size()));
        for (const KEY_ADDRESS &key : all) {
            if (verb == "write")
                intf_setData(1, key.regName, key.startAddr, key.count, Panel::bytes(values), 9);
            else if (verb == "condition")
                intf_addConditionRead(key, 9);
        }
        QStringList queue;
        for (const AddressSpan &block : driver.readList)
            queue.append(rangeText(block));
        for (const VARIABLE &piece : driver.condReadList + driver.writeList) {
            queue.append(rangeText(piece));
            QCOMPARE(piece.kind, 9);
            const int size = elementBytes(piece.regName);
            const QByteArray given = values.mid((piece.startAddr - all.first().startAddr) * size);
            QVERIFY(verb != "write" ||
                    memcmp(piece.valueBuf, given.constData(), size_t(piece.count * size)) == 0);
        }
        QTEST(queue.join(", "), "queue");
    }

    void fullQueue()
    {
        Panel::self().start();
        const auto write = [](int word, int kind) {
            const unsigned char values[] = {0, 0};
            intf_setData(1, "D_W", word, 1, values, kind);
        };
        for (int word = 0; word < 520; ++word)
            write(word, 1);
        write(200, 4);  // waits already: takes its own place
        write(0, 5);    // the head is never replaced: takes the last place
        QCOMPARE(int(driver.writeList.size()), 513);
        for (int i = 0; i < 513; ++i) {
            QCOMPARE(driver.writeList.at(i).startAddr, i % 512);
            QCOMPARE(driver.writeList.at(i).kind, i == 200 ? 4 : i == 512 ? 5 : 1);
        }
    }

    void recipe_data()
    {
        // Groups: per block, its first entry in address order.
        table({"limit", "asked", "blocks", "groups"},
              {{"groups count entries, gaps are not bridged", "4",
                "D_W 0 x2 @0, D_W 2 x2 @2, D_W 50 x1 @9", "D_W 0 x4 @0, D_W 50 x1 @9", "0 2"},
               {"not beyond the limit", "3", "D_W 0 x2 @0, D_W 2 x2 @2", "D_W 0 x2 @0, D_W 2 x2 @2",
                "0 1"},
               {"overlap", "64", "D_W 0 x3 @0, D_W 2 x3 @10", "D_W 0 x5 @0", "0"},
               {"stations and types apart", "64", "2:D_W 1 x1 @0, D_W 0 x1 @1, M_W 0 x1 @2",
                "M_W 0 x1 @2, D_W 0 x1 @1, 2:D_W 1 x1 @0", "0 1 2"},
               {"bits stay bits", "64", "M_bit 0 x20 @0, M_bit 20 x5 @20, M_W 0 x1 @50",
                "M_W 0 x1 @50, M_bit 0 x25 @0", "0 1"},
               {"contacts join at the same start", "64", "TX 5 x1 @0, TX 6 x1 @1, TX 6 x2 @2",
                "TX 5 x1 @0, TX 6 x2 @1", "0 1"},
               {"a block is at most a frame", "200", "D_W 0 x127 @0, D_W 127 x73 @127",
                "D_W 0 x127 @0, D_W 127 x73 @127", "0 1"},
               {"an entry beyond a frame is cut, with its place", "64", "D_W 0 x300 @10",
                "D_W 0 x127 @10, D_W 127 x127 @137, D_W 254 x46 @264", "0 0 0"},
               {"what follows a cut entry keeps its own place", "64",
                "D_W 0 x130 @0, D_W 130 x2 @500", "D_W 0 x127 @0, D_W 127 x3 @127, D_W 130 x2 @500",
                "0 0 1"},
               {"weights wrap: nothing is joined backwards", "64",
                "10922:F_bit 0 x1 @0, 10922:F_bit 3 x1 @1",
                "10922:F_bit 3 x1 @1, 10922:F_bit 0 x1 @0", "0 1"},
               {"limit 0 joins nothing", "0", "D_W 0 x1 @0, D_W 1 x1 @1",
                "D_W 0 x1 @0, D_W 1 x1 @1", "0 1"}});
    }
    void recipe()
    {
        QFETCH(QString, limit);
        QFETCH(QString, asked);
        Panel::self().start(limit);
        intf_setRcpAddress(recipeEntries(asked));
        QStringList blocks;
        for (const _RCP_VAR_PRO &block : driver.rcpBlocks)
            blocks.append(rangeText(block) + QString(" @%1").arg(block.bufIndex));
        QTEST(blocks.join(", "), "blocks");
        QStringList groups;
        for (const int first : driver.rcpGroupStarts)
            groups.append(QString::number(first));
        QTEST(groups.join(' '), "groups");
    }

    void recipeBits()
    {
        Panel &panel = Panel::self();
        panel.start();
        panel.buffer.replace(2 * 3, 2 * 3, QByteArray::fromHex("010000000101"));
        intf_setRcpAddress(recipeEntries("M_bit 20 x2 @3, M_bit 22 x1 @5"));
        driver.rcpIndex = 0;
        VARIABLE var = item("D_W 0 x2");
        std::memset(var.valueBuf, 0xFF, sizeof var.valueBuf);
        rcpAddrToVar(0, var, 1);
        QCOMPARE(rangeText(var), QString("M_bit 20 x3"));
        QCOMPARE(QByteArray(reinterpret_cast<char *>(var.valueBuf), ValueBytes),
                 QByteArray::fromHex("010001").leftJustified(ValueBytes, '\0'));
    }
};

QTEST_GUILESS_MAIN(PlanningTest)
#include "tst_planning.moc"
