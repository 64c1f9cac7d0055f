// The register types, all of them in every respect that a panel sees, and the exports around
// addresses: texts and numbers both ways, checks, descriptions, series.
#include <QtTest/QtTest>

#include <vector>

#include "serviceForProtocol/address.h"

namespace {

enum { Untouched = 77 };

typedef std::vector<const char *> Cells;

/** A table of texts: the names of its columns; per row a name and the cells. */
void table(const Cells &columns, const std::vector<Cells> &rows)
{
    for (const char *const column : columns)
        QTest::addColumn<QString>(column);
    for (const Cells &row : rows) {
        QTestData &data = QTest::newRow(row.at(0));
        for (size_t i = 1; i < row.size(); ++i)
            data << QString(row.at(i));
    }
}

/** The register types in the order in which they are told: name, device, pattern, last address. */
const std::vector<Cells> &types()
{
    static const std::vector<Cells> rows = {
        {"P_W", "h", "DDDD", "2047"},         {"M_W", "i", "DDDD", "2047"},
        {"L_W", "j", "DDDDD", "11263"},       {"K_W", "k", "DDDD", "2559"},
        {"F_W", "n", "DDDD", "2047"},         {"D_W", "a", "DDDDD", "32767"},
        {"S_W", "o", "DDD", "127"},           {"T_W", "b", "DDDD", "2047"},
        {"C_W", "c", "DDDD", "2047"},         {"N_W", "p", "DDDDD", "21503"},
        {"Z_W", "s", "DDDD", "127"},          {"P_bit", "h", "DDDD.DD", "2047.15"},
        {"M_bit", "i", "DDDD.DD", "2047.15"}, {"L_bit", "j", "DDDDD.DD", "11263.15"},
        {"K_bit", "k", "DDDD.DD", "4095.15"}, {"F_bit", "n", "DDDD.DD", "2047.15"},
        {"TX", "l", "DDDD", "2047"},          {"CX", "m", "DDDD", "2047"},
    };
    return rows;
}

QString reported;

void report(int first, int station, const QString &text, int address)
{
    reported += QString("%1 %2 %3 %4;").arg(first).arg(station).arg(text).arg(address);
}

/** The frame on offer without control bytes and checksum. */
QByteArray nextFrame()
{
    FRAME_PRO frame;
    if (intf_getSendFrame(&frame) != 1)
        return QByteArray();
    return QByteArray(reinterpret_cast<const char *>(frame.frame + 1), frame.sendLen - 4);
}

/** A 16-bit field of a frame: low byte first. */
QByteArray field16(int value)
{
    QByteArray bytes(1, char(value & 0xFF));
    return (bytes + char(value >> 8)).toHex().toUpper();
}

}  // namespace

class AddressTest : public QObject
{
    Q_OBJECT

private slots:
    void type_data() { table({"device", "pattern", "last"}, types()); }
    void type()
    {
        QFETCH(QString, device);
        QFETCH(QString, pattern);
        QFETCH(QString, last);
        const QString name = QTest::currentDataTag();
        const bool words = name.endsWith("_W");
        const bool dotted = name.endsWith("_bit");
        const int word = last.section('.', 0, 0).toInt();
        const int number = dotted ? word * 16 + 15 : word;

        QStringList description("was there");
        QCOMPARE(intf_getRegDiscription(name, description), 0);
        QCOMPARE(description.join(" "),
                 QString("was there %1 %2 %3 %4 1")
                     .arg(pattern, dotted ? "0.0" : "0", last, words ? "1" : "0"));

        for (int count = 1; count <= 2; ++count) {
            int found = Untouched;
            QCOMPARE(intf_checkAddrValidity(name, last, &found, count, words), 2 * (count - 1));
            QCOMPARE(found, number);
            for (int useMode = 0; useMode <= 2; ++useMode)
                QCOMPARE(intf_checkAddr(name, last, &found, words ? 2 : -1, count, useMode),
                         2 * (count - 1));
        }
        int other = Untouched;
        QCOMPARE(intf_checkAddrValidity(name, last, &other, 1, !words), 1);
        QCOMPARE(intf_checkAddr(name, last, &other, words ? -1 : 0, 1, 0), 1);
        QCOMPARE(other, int(Untouched));
        QCOMPARE(intf_checkAddrValidity(name, dotted ? "-1.0" : "-1", &other, 1, words), 2);

        // Copies up to the last address; one of 32 bits takes two words, but one bit.
        QVector<QString> texts;
        QVector<int> numbers;
        QCOMPARE(intf_multiCopy(name, number - 1, 3, -1, texts, numbers), 2);
        QCOMPARE(intf_multiCopy(name, 0, 2, -2, texts, numbers), 1);
        QCOMPARE(texts.at(1) + ' ' + texts.at(2), last + ' ' + last);
        QCOMPARE(numbers, QVector<int>() << number - 1 << number << number << 0 << (words ? 2 : 1));

        // The last address on the wire, in the report of its change, and in the error text.
        reported.clear();
        intf_setAddrValueChangeCallBack(report);
        intf_initProperty(nullptr, nullptr, nullptr, nullptr, "9#0#0#1#64", nullptr);
        KEY_ADDRESS key;
        key.stationNo = 3;
        key.regName = name;
        key.startAddr = number;
        key.count = 1;
        QCOMPARE(intf_addrMerge(QList<KEY_ADDRESS>() << key), 1);
        const int frameWord = name.endsWith('X') ? number / 16 : word;
        const QByteArray place = device.toLatin1() + field16(frameWord * 2) + "00";
        QCOMPARE(nextFrame(), 'r' + place + "02");
        QString error;
        QCOMPARE(intf_dealRcvFrame(QByteArray(), &error), 2);

        const unsigned char value[] = {1, 0};
        intf_setData(3, name, number, 1, value, 0);
        QCOMPARE(reported, QString("9 3 %1 %2;").arg(name).arg(number));
        QCOMPARE(nextFrame(),
                 words ? 'w' + place + "020100" : 'o' + place + field16(1 << number % 16));
        QCOMPARE(intf_dealRcvFrame(QByteArray(), &error), 2);
        QCOMPARE(error, "3#" + name + last + "(1)(0)");
    }

    void identity()
    {
        int type = Untouched;
        intf_getProtocolType(&type);
        QCOMPARE(type, 0);
        QCOMPARE(intf_getVersion(), QString("2.0.0.0"));
        QString text = "was there";
        intf_SetDriverPropertyPage("any");
        intf_getDriverPropertyPage(text);
        QCOMPARE(text, QString("0_0"));
        intf_getDriverParameter(text);
        QStringList words, unheardOf, bits;
        QCOMPARE(intf_getRegListByType(1, words), 1);
        QCOMPARE(intf_getRegListByType(5, unheardOf), 0);
        QCOMPARE(intf_getRegListByType(-1, unheardOf), 0);
        QCOMPARE(intf_getRegListByType(0, bits), 1);
        QCOMPARE(unheardOf, words + words);
        QStringList all;
        for (const Cells &row : types())
            all << row.at(0);
        QCOMPARE(words + bits, all);
        QCOMPARE(words, all.filter("_W"));
        QCOMPARE(text,
                 QString("0,115200,8,NONE,1,0,1,192.168.1.100,8000,tolvane_link,") + all.join(","));
        QStringList nothing;
        QCOMPARE(intf_getRegDiscription("d_w", nothing), 0);
        QVERIFY(nothing.isEmpty());
    }

    void check_data()
    {
        // Outcome: the result code and what stands in the number, 77 before.
        table({"asked", "outcome"},
              {{"as many as an int holds", "D_W 1 2147483647 word", "2 1"},
               {"beyond the last, but no values", "D_W 32768 0 word", "0 32768"},
               {"leading zeros", "D_W 00002047 1 word", "0 2047"},
               {"bit 16", "M_bit 20.16 1 bit", "4 77"},
               {"bit -5", "M_bit 3.-5 1 bit", "4 77"},
               {"no bit", "M_bit 20 1 bit", "4 77"},
               {"no word number", "M_bit x.3 1 bit", "4 77"},
               {"no bit number", "M_bit 20.x 1 bit", "4 77"},
               {"a word and its bit", "M_bit 20.5 1 bit", "0 325"},
               {"bits reach further than words", "K_bit 2560.0 1 bit", "0 40960"},
               {"a contact with a full stop", "TX 20.5 1 bit", "4 0"},
               {"letter O for zero", "D_W 1O0 1 word", "4 0"},
               {"beyond an int", "D_W 99999999999 1 word", "4 0"},
               {"unknown type", "X_W 1O0 9999 bit", "3 77"},
               // 2^28 words are 2^32 bits: counted in 32 bits this would pass for bit 0.5.
               {"word number that wraps", "M_bit 268435456.5 1 bit", "4 77"}});
    }
    void check()
    {
        QFETCH(QString, asked);
        const QString name = asked.section(' ', 0, 0), text = asked.section(' ', 1, 1);
        const int count = asked.section(' ', 2, 2).toInt();
        const bool word = asked.endsWith("word");
        QStringList outcomes;
        for (const bool byUse : {false, true}) {
            int number = Untouched;
            const int result =
                byUse ? intf_checkAddr(name, text, &number, word ? 7 : -1, count, 1)
                      : intf_checkAddrValidity(name, text, &number, count, word ? 1 : 0);
            outcomes << QString("%1 %2").arg(result).arg(number);
        }
        outcomes.removeDuplicates();
        QTEST(outcomes.join(", "), "outcome");
    }

    void series_data()
    {
        table({"asked", "series"},
              {{"by 16-bit values", "D_W 100 3 -1", "1: 100=100 101=101 102=102"},
               {"by 32-bit values", "D_W 100 2 -2", "1: 100=100 102=102"},
               {"other steps below 1", "D_W 5 2 -5", "1: 5=5 6=6"},
               {"wide steps", "D_W 5 2 7", "1: 5=5 12=12"},
               {"bits into the next word", "M_bit 335 2 -1", "1: 20.15=335 21.0=336"},
               {"below the first", "D_W -1 2 1", "1: 4294967295=-1 0=0"},
               {"a bit below the first", "M_bit -1 2 1", "1: 0.-1=-1 0.0=0"},
               {"fewer than none", "D_W 99999 -1 1", "1:"},
               {"unknown type", "D_w 1 2 1", "0:"}});
    }
    void series()
    {
        QFETCH(QString, asked);
        const QStringList cells = asked.split(' ');
        QVector<QString> texts(1, "was there");
        QVector<int> numbers(1, Untouched);
        QString series =
            QString("%1:").arg(intf_multiCopy(cells.at(0), cells.at(1).toInt(), cells.at(2).toInt(),
                                              cells.at(3).toInt(), texts, numbers));
        QCOMPARE(texts.at(0) + QString::number(numbers.at(0)), QString("was there77"));
        QCOMPARE(numbers.size(), texts.size());
        for (int i = 1; i < numbers.size(); ++i)
            series += QString(" %1=%2").arg(texts.at(i)).arg(numbers.at(i));
        QTEST(series, "series");
    }

    // What no type of this controller has: other bases, restricted access, wider values.
    void otherTables()
    {
        int number = Untouched;
        QCOMPARE(a2i("20.5", number, "D.D", "M_bit") + number, 326);
        QCOMPARE(a2i("12", number, "", "D_W") + number, 13);
        QCOMPARE(a2i("12", number, "XX", "D_W") + number, 13);
        QCOMPARE(a2i("1F", number, "HHHH", "D_W") + number, 32);
        QCOMPARE(a2i("17", number, "OOO", "D_W") + number, 16);
        QCOMPARE(a2i("18", number, "OOO", "D_W"), -1);
        // Results for data types 0 to 9 with use 0, then for data type 1 with uses 1 and 2.
        const char *const rows[][4] = {{"16", "R", "000000000066", "1 0"},
                                       {"16", "W", "000000000000", "1 2"},
                                       {"32", "RW", "505050055000", "2 1"}};
        AddressRange &type = const_cast<AddressRange &>(ADDRESS_RANGE_PRO[5]);
        const AddressRange kept = type;
        for (const auto &row : rows) {
            type.valueBits = row[0];
            type.access = row[1];
            QString results;
            for (int i = 0; i < 12; ++i)
                results += QString::number(
                    intf_checkAddr("D_W", "5", &number, i < 10 ? i : 1, 1, i < 10 ? 0 : i - 9));
            QStringList description;
            intf_getRegDiscription("D_W", description);
            type = kept;
            QCOMPARE(results, QString(row[2]));
            QCOMPARE(description.join(" "), QString("DDDDD 0 32767 ") + row[3]);
        }
    }
};

QTEST_MAIN(AddressTest)
#include "tst_address.moc"
