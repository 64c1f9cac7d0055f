// The address room and the exports around it: texts and numbers both ways, ordering weights,
// checks, descriptions, series, and how the driver names and initialises itself.
#include "panel.h"
#include "serviceForProtocol/address.h"

static const int Untouched = 77;

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
               {"unheard-of pattern", "XX", "D_W", "12", "12"},
               {"word.bit", "DDDD.DD", "M_bit", "20.5,0.0,2047.15", "325 0 32767"},
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

    void weight()
    {
        QCOMPARE(getRegAddressWeight(0, "M_W", 0), 65535U);
        QCOMPARE(getRegAddressWeight(1, "P_W", 0), 1179630U);
        QCOMPARE(getRegAddressWeight(0, "X_W", 0), 4294901761U);
        QCOMPARE(getRegAddressWeight(1, "m_w", 3), getRegAddressWeight(0, "CX", 3));
        QCOMPARE(getRegAddressWeight(2147483647, "CX", 2147483647), 2147418112U);
    }

    void check_data()
    {
        // Outcome: the result code and what stands in the number, 77 before.
        table({"asked", "outcome"},
              {{"last word", "D_W 32767 1 word", "0 32767"},
               {"one word too count", "D_W 32767 2 word", "2 32767"},
               {"as many as an int holds", "D_W 1 2147483647 word", "2 1"},
               {"bit of a word type", "D_W 100 1 bit", "1 77"},
               {"word of a bit type", "M_bit 20.5 1 word", "1 77"},
               {"bit 16", "M_bit 20.16 1 bit", "4 77"},
               {"last bit", "M_bit 2047.15 1 bit", "0 32767"},
               {"one bit too count", "M_bit 2047.15 2 bit", "2 32767"},
               {"bits reach further than words", "K_bit 4095.15 1 bit", "0 65535"},
               {"words end before bits", "K_W 2560 1 word", "2 2560"},
               {"below the first", "S_W -1 1 word", "2 -1"},
               {"letter O for zero", "D_W 1O0 1 word", "4 0"},
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
        for (const int useMode : {-1, 0, 1, 2}) {
            int number = Untouched;
            const int result =
                useMode < 0 ? intf_checkAddrValidity(name, text, &number, count, word ? 1 : 0)
                            : intf_checkAddr(name, text, &number, word ? 7 : -1, count, useMode);
            outcomes.append(QString("%1 %2").arg(result).arg(number));
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
        table(
            {"asked", "step", "series"},
            {{"words", "D_W 100 x3", "1", "1: 100=100 101=101 102=102"},
             {"by 32-bit values", "D_W 100 x2", "-2", "1: 100=100 102=102"},
             {"past the last word", "D_W 32767 x3", "1", "2: 32767=32767 32767=32767 32767=32767"},
             {"bits into the next word", "M_bit 335 x2", "-1", "1: 20.15=335 21.0=336"},
             {"past the last bit", "M_bit 32767 x2", "-2", "2: 2047.15=32767 2047.15=32767"},
             {"below the first", "D_W -1 x2", "1", "1: 4294967295=-1 0=0"},
             {"a bit below the first", "M_bit -1 x2", "1", "1: 0.-1=-1 0.0=0"},
             {"fewer than none", "D_W 99999 x-1", "1", "1:"},
             {"unknown type", "D_w 1 x2", "1", "0:"}});
    }
    void series()
    {
        QFETCH(QString, asked);
        QFETCH(QString, step);
        const Range what = ranges(asked).first();
        QVector<QString> texts(1, "was there");
        QVector<int> numbers(1, Untouched);
        QString series = QString("%1:").arg(
            intf_multiCopy(what.name, what.start, what.count, step.toInt(), texts, numbers));
        QCOMPARE(texts.takeFirst(), QString("was there"));
        QCOMPARE(numbers.takeFirst(), Untouched);
        for (int i = 0; i < numbers.size(); ++i)
            series += QString(" %1=%2").arg(texts.at(i)).arg(numbers.at(i));
        QTEST(series, "series");
    }

    void propertyText()
    {
        // The five values, the block limit in bits and in words.
        const auto after = [](const char *text) {
            QString values = QString::number(Panel::self().initProperty(text)) + ":";
            for (const int value :
                 {driver.propItem0, driver.propItem1, driver.propItem2, driver.propItem3,
                  driver.propItem4, driver.mergeBits, driver.mergeWords})
                values += QString(" %1").arg(value);
            return values;
        };
        QCOMPARE(after("1#0#0#3#32"), QString("1: 1 0 0 3 32 256 32"));
        QCOMPARE(after("x#-2##0x5#10"), QString("1: 0 -2 0 0 10 80 10"));
        QCOMPARE(after("1#2#3#4"), QString("1: 0 -2 0 0 10 80 10"));
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
        QCOMPARE(intf_getRegListByType(0, bits), 1);
        QCOMPARE(unheardOf, words);
        QCOMPARE(bits.join(','), QString("P_bit,M_bit,L_bit,K_bit,F_bit,TX,CX"));
        QCOMPARE(text, "0,115200,8,NONE,1,0,1,192.168.1.100,8000,tolvane_link," +
                           (words + bits).join(','));
    }
};

QTEST_GUILESS_MAIN(AddressTest)
#include "tst_address.moc"
