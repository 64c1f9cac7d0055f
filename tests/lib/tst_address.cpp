// The address room and the exports around it: texts and numbers both ways, ordering weights,
// checks, descriptions, series, and how the driver names and initialises itself.
#include "panel.h"
#include "serviceForProtocol/address.h"

namespace {

enum { Untouched = 77 };

QString outcome(int result, int number)
{
    return QString("%1 %2").arg(result).arg(number);
}

}  // namespace

class AddressTest : public QObject
{
    Q_OBJECT

private slots:
    void textToNumber_data()
    {
        // A refused text makes a number 0 and leaves a word.bit number untouched.
        table({"format", "name", "texts", "numbers"},
              {{"decimal", "DDDD", "D_W", "100,0002047,-1,10A,20.5,,99999999999",
                "100 2047 -1 no:0 no:0 no:0 no:0"},
               {"hexadecimal", "HHHH", "D_W", "1F,20,G", "31 32 no:0"},
               {"octal", "OOO", "D_W", "17,18", "15 no:0"},
               {"no pattern", "", "D_W", "12", "12"},
               {"unheard-of pattern", "XX", "D_W", "12", "12"},
               {"word.bit", "DDDD.DD", "M_bit", "20.5,0.0,2047.15", "325 0 32767"},
               {"widest word.bit", "DDDDD.DD", "L_bit", "11263.15", "180223"},
               {"not word.bit", "DDDD.DD", "M_bit", "20.16,20,20.5.1,x.3,20.x,.5,5.,,3.-5",
                "no no no no no no no no no"},
               {"bit pattern, word name", "DDDD.DD", "D_W", "20.5", "0"}});
    }
    void textToNumber()
    {
        QFETCH(QString, format);
        QFETCH(QString, name);
        QFETCH(QString, texts);
        QStringList numbers;
        for (const QString &text : texts.split(',')) {
            int number = Untouched;
            const int result = a2i(text, number, format, name);
            const QString refused = number == Untouched ? "no" : QString("no:%1").arg(number);
            numbers.append(result == 1 ? QString::number(number) : refused);
        }
        QTEST(numbers.join(' '), "numbers");
    }

    void numberToText()
    {
        QCOMPARE(addr_int2str(325, "M_bit"), QString("20.5"));
        QCOMPARE(addr_int2str(0, "F_bit"), QString("0.0"));
        QCOMPARE(addr_int2str(32767, "P_bit"), QString("2047.15"));
        QCOMPARE(addr_int2str(-1, "M_bit"), QString("0.-1"));
        QCOMPARE(addr_int2str(100, "D_W"), QString());
        QCOMPARE(addr_int2str(100, "TX"), QString());
    }

    void weight()
    {
        QCOMPARE(getRegAddressWeight(0, "P_W", 10), 10U);
        QCOMPARE(getRegAddressWeight(0, "M_W", 0), 65535U);
        QCOMPARE(getRegAddressWeight(1, "P_W", 0), 1179630U);
        QCOMPARE(getRegAddressWeight(0, "X_W", 0), 4294901761U);
        QCOMPARE(getRegAddressWeight(1, "m_w", 3), getRegAddressWeight(0, "CX", 3));
        QCOMPARE(getRegAddressWeight(2147483647, "CX", 2147483647), 2147418112U);
    }

    void check_data()
    {
        // Outcome: the result code and what stands in the number, 77 before.
        table({"name", "text", "count", "wants", "outcome"},
              {{"word", "D_W", "100", "1", "word", "0 100"},
               {"ten words", "D_W", "0", "10", "word", "0 0"},
               {"last word", "D_W", "32767", "1", "word", "0 32767"},
               {"one word too many", "D_W", "32767", "2", "word", "2 32767"},
               {"beyond the last word", "D_W", "32768", "1", "word", "2 32768"},
               {"as many as an int holds", "D_W", "1", "2147483647", "word", "2 1"},
               {"bit of a word type", "D_W", "100", "1", "bit", "1 77"},
               {"word of a bit type", "M_bit", "20.5", "1", "word", "1 77"},
               {"word of timer contacts", "TX", "5", "1", "word", "1 77"},
               {"bit", "M_bit", "20.5", "1", "bit", "0 325"},
               {"bit 16", "M_bit", "20.16", "1", "bit", "4 77"},
               {"no bit part", "M_bit", "20", "1", "bit", "4 77"},
               {"last bit", "M_bit", "2047.15", "1", "bit", "0 32767"},
               {"one bit too many", "M_bit", "2047.15", "2", "bit", "2 32767"},
               {"bits reach further than words", "K_bit", "4095.15", "1", "bit", "0 65535"},
               {"words end before bits", "K_W", "2560", "1", "word", "2 2560"},
               {"last timer contact", "TX", "2047", "1", "bit", "0 2047"},
               {"last system word", "S_W", "127", "1", "word", "0 127"},
               {"below the first", "S_W", "-1", "1", "word", "2 -1"},
               {"letter O for zero", "D_W", "1O0", "1", "word", "4 0"},
               {"unknown type", "X_W", "1O0", "9999", "bit", "3 77"},
               {"type in lower case", "d_w", "1", "1", "word", "3 77"},
               // 2^28 words are 2^32 bits: counted in 32 bits this would pass for bit 0.5.
               {"word number that wraps", "M_bit", "268435456.5", "1", "bit", "4 77"}});
    }
    void check()
    {
        QFETCH(QString, name);
        QFETCH(QString, text);
        QFETCH(QString, count);
        QFETCH(QString, wants);
        const bool word = wants == "word";
        int number = Untouched;
        int result = intf_checkAddrValidity(name, text, &number, count.toInt(), word ? 1 : 0);
        QCOMPARE(intf_checkAddrValidity(name, text, nullptr, count.toInt(), word ? -1 : 0), result);
        QStringList outcomes(outcome(result, number));
        for (const int useMode : {0, 1, 2}) {
            number = Untouched;
            result = intf_checkAddr(name, text, &number, word ? 7 : -1, count.toInt(), useMode);
            outcomes.append(outcome(result, number));
        }
        outcomes.removeDuplicates();
        QTEST(outcomes.join(", "), "outcome");
    }

    void describe()
    {
        QStringList description("was there");
        for (const char *name : {"D_W", "d_w", "L_bit", "Z_W", "CX"})
            QCOMPARE(intf_getRegDiscription(name, description), 0);
        QCOMPARE(description.join(' '), QString("was there DDDDD 0 32767 1 1 "
                                                "DDDDD.DD 0.0 11263.15 0 1 "
                                                "DDDD 0 127 1 1 DDDD 0 2047 0 1"));
    }

    void series_data()
    {
        table({"name", "start", "count", "step", "series"},
              {{"words", "D_W", "100", "3", "1", "1: 100=100 101=101 102=102"},
               {"every tenth, up to the last", "D_W", "32757", "2", "10",
                "1: 32757=32757 32767=32767"},
               {"by 16-bit values", "D_W", "7", "2", "-1", "1: 7=7 8=8"},
               {"by 32-bit values", "D_W", "100", "2", "-2", "1: 100=100 102=102"},
               {"past the last word", "D_W", "32767", "3", "1",
                "2: 32767=32767 32767=32767 32767=32767"},
               {"bits into the next word", "M_bit", "335", "2", "-1", "1: 20.15=335 21.0=336"},
               {"past the last bit", "M_bit", "32767", "2", "-2", "2: 2047.15=32767 2047.15=32767"},
               {"past the last contact", "TX", "2047", "2", "-2", "2: 2047=2047 2047=2047"},
               {"step 0", "D_W", "1", "2", "0", "1: 1=1 2=2"},
               {"step -5", "TX", "1", "2", "-5", "1: 1=1 2=2"},
               {"below the first", "D_W", "-1", "2", "1", "1: 4294967295=-1 0=0"},
               {"none", "D_W", "1", "0", "1", "1:"},
               {"fewer than none", "D_W", "99999", "-1", "1", "1:"},
               {"unknown type", "D_w", "1", "2", "1", "0:"}});
    }
    void series()
    {
        QFETCH(QString, name);
        QFETCH(QString, start);
        QFETCH(QString, count);
        QFETCH(QString, step);
        QVector<QString> texts(1, "was there");
        QVector<int> numbers(1, Untouched);
        QString series = QString("%1:").arg(
            intf_multiCopy(name, start.toInt(), count.toInt(), step.toInt(), texts, numbers));
        QCOMPARE(int(texts.size()), int(numbers.size()));
        QCOMPARE(texts.takeFirst() + outcome(0, numbers.takeFirst()), QString("was there0 77"));
        for (int i = 0; i < numbers.size(); ++i)
            series += QString(" %1=%2").arg(texts.at(i)).arg(numbers.at(i));
        QTEST(series, "series");
    }

    void propertyText_data()
    {
        // After "9#8#7#6#5": the five values, the block limit in bits and in words.
        table({"text", "values"}, {{"all five", "1#0#0#3#32", "1 0 0 3 32 256 32"},
                                   {"too few", "1#2#3#4", "9 8 7 6 5 40 5"},
                                   {"none", "", "9 8 7 6 5 40 5"},
                                   {"no numbers", "x#-2##0x5#10", "0 -2 0 0 10 80 10"},
                                   {"more", "1#2#3#4#5#6#7", "1 2 3 4 5 40 5"},
                                   {"empty ones", "####", "0 0 0 0 0 0 0"}});
    }
    void propertyText()
    {
        QFETCH(QString, text);
        QCOMPARE(Panel::self().initProperty("9#8#7#6#5"), 1);
        QCOMPARE(Panel::self().initProperty(text.toLatin1()), 1);
        QStringList values;
        for (const int value :
             {driver.propItem0, driver.propItem1, driver.propItem2, driver.propItem3,
              driver.propItem4, driver.mergeBits, driver.mergeWords})
            values.append(QString::number(value));
        QTEST(values.join(' '), "values");
    }

    void typeLists()
    {
        QStringList bits("was there");
        QCOMPARE(intf_getRegListByType(0, bits), 1);
        QCOMPARE(bits.join(' '), QString("was there P_bit M_bit L_bit K_bit F_bit TX CX"));
        QStringList words("was there");
        QCOMPARE(intf_getRegListByType(1, words), 1);
        QCOMPARE(words.join(' '), QString("was there P_W M_W L_W K_W F_W D_W S_W T_W C_W N_W Z_W"));
        for (const int other : {5, -1}) {
            QStringList names("was there");
            QCOMPARE(intf_getRegListByType(other, names), 0);
            QCOMPARE(names, words);
        }
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
        QCOMPARE(text, QString("0,115200,8,NONE,1,0,1,192.168.1.100,8000,tolvane_link,"
                               "P_W,M_W,L_W,K_W,F_W,D_W,S_W,T_W,C_W,N_W,Z_W,"
                               "P_bit,M_bit,L_bit,K_bit,F_bit,TX,CX"));
    }
};

QTEST_GUILESS_MAIN(AddressTest)
#include "tst_address.moc"
