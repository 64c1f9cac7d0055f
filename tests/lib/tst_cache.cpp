// The cache of the controller's memory: finding data areas, monitor marks, what host writes and
// controller values do to them, and what the host is told when.
#include "panel.h"
#include "serviceForProtocol/reply_decode.h"
#include "serviceForProtocol/value_store.h"

namespace {

/** A range's values as the host gets them, and proof that nothing is written behind them. */
QString valuesOf(const Range &what)
{
    QByteArray values(qMax(0, what.count) * elementBytes(what.name) + 1, '\xEE');
    intf_getData(what.station, what.name, what.start, what.count, Panel::bytes(values));
    return "= " + values.toHex().toUpper().replace(QByteArray("EE"), QByteArray("."));
}

/** The data area of a range's first address, every field that the rules speak of. */
QString areaText(const Range &what)
{
    const int unit = what.name.contains("_bit") ? what.start / 16 : what.start;
    const _DATA_ &area = driver.dataAreaList.at(
        getIndexOfDataArea(what.station, what.name.section('_', 0, 0), unit, driver.dataAreaList));
    return QString("read %1 written %2 shown %3 mask %4")
        .arg(area.readValue[0] << 8 | area.readValue[1], 4, 16, QLatin1Char('0'))
        .arg(area.writeValue[0] << 8 | area.writeValue[1], 4, 16, QLatin1Char('0'))
        .arg(area.hasWriteValue)
        .arg(area.writeBitMask, 0, 16);
}

/** The write at the head of the queue has come to its end. */
void settle(const Range &what, int result)
{
    _write_FailOrSuc(what.station, what.name, what.start, what.count, result);
    if (!driver.writeList.isEmpty())
        driver.writeList.removeFirst();
}

/** One step of a story: a verb and what it is about. What can be seen of it is reported. */
void play(const QString &step)
{
    Panel &panel = Panel::self();
    const QString verb = step.section(' ', 0, 0);
    const QString rest = step.section(' ', 1);
    Range what = ranges(rest + " D_W 0 x0").first();
    if (verb == "monitor") {
        intf_addrMerge(keys(rest));
    } else if (verb == "write") {
        intf_setData(what.station, what.name, what.start, what.count, Panel::bytes(what.values), 0);
    } else if (verb == "reply") {
        driver.sendState = CyclicRead;
        const VARIABLE read = item(what);
        analyzeFrameOfVal("\x06r" + what.values.toHex(), what.count, 2, read);
    } else if (verb == "done" || verb == "failed") {
        settle(what, verb == "done" ? 1 : 0);
    } else if (verb == "get") {
        panel.reports.append(valuesOf(what));
    } else if (verb == "look") {
        panel.reports.append(areaText(what));
    } else if (verb == "unsent") {
        panel.initProperty("7#1#0#3#64");
    } else if (verb == "deaf") {
        intf_setAddrValueChangeCallBack(nullptr);
    } else {
        panel.reports.append("no such verb: " + verb);
    }
}

}  // namespace

class CacheTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { Panel::self().start(); }

    void lookUp_data()
    {
        // "D5" looks unit 5 of area "D" up; in between somebody else appends "+D5", removes the
        // area at a position "-0" or empties the list "clear".
        table({"steps", "answers"},
              {{"made once", "D5 D6 D5 D6", "0 1 0 1"},
               {"areas of one address", "D5 TX5 M5 D5", "0 1 2 0"},
               {"any number", "D-1 D2147483647 D-2147483648 D-1 D2147483647", "0 1 2 0 1"},
               {"filled by somebody else", "+D5 +D7 D7 D6 D5", "1 2 0"},
               {"filled later", "D5 +D7 +D9 D9 D5 D7", "0 2 0 1"},
               {"first one wins", "+D4 +D5 +D5 D5", "1"},
               {"emptied", "D5 D6 clear D6 D5", "0 1 0 1"},
               {"emptied and filled", "D5 D6 clear +D6 +D5 D5 D6 D7", "0 1 1 0 2"},
               {"emptied and filled with others", "D5 D6 clear +D8 +D9 D5 D9", "0 1 2 1"},
               {"emptied and filled with more", "D5 D6 clear +D7 +D8 +D9 D7 D5", "0 1 0 3"},
               {"the first taken out", "D5 D6 D7 -0 D7 D6 D5", "0 1 2 1 0 2"},
               {"one in the middle", "D5 D6 D7 -1 D5 D7 D6", "0 1 2 0 1 2"},
               {"the last, and one more", "D5 D6 -1 +D7 D6 D7 D5", "0 1 2 1 0"}});
    }
    void lookUp()
    {
        QFETCH(QString, steps);
        QList<_DATA_> other;
        for (QList<_DATA_> *list : {&driver.dataAreaList, &other}) {
            QStringList answers;
            static const QRegularExpression form("^([+]?)([A-Z]+)(-?\\d+)$");
            for (const QString &step : steps.split(' ')) {
                const QRegularExpressionMatch match = form.match(step);
                _DATA_ area = _DATA_();
                area.stationNo = 1;
                area.areaName = match.captured(2);
                area.unitAddr = match.captured(3).toInt();
                if (step == "clear")
                    list->clear();
                else if (step.startsWith('-'))
                    list->removeAt(step.mid(1).toInt());
                else if (step.startsWith('+'))
                    list->append(area);
                else
                    answers.append(QString::number(
                        getIndexOfDataArea(1, area.areaName, area.unitAddr, *list)));
            }
            QTEST(answers.join(' '), "answers");
        }
    }

    void lookUpOfMany()
    {
        QList<_DATA_> &list = driver.dataAreaList;
        for (int pass = 0; pass < 2; ++pass) {
            int expected = 0;
            for (int unit = -300; unit < 300; ++unit)
                for (const int station : {0, 1, -1, 65536})
                    for (const int spread : {1, 7000000})
                        for (const char *area : {"D", "M"})
                            if (spread == 1 || unit % 300 != 0)
                                QCOMPARE(getIndexOfDataArea(station, area, unit * spread, list),
                                         expected++);
            QCOMPARE(int(list.size()), expected);
        }
        const _DATA_ &area = list.last();
        QVERIFY(!area.hasWriteValue && !area.writeBitMask && !area.monitorFlags);
        QCOMPARE(area.bitMonitorMask, 0U);
        QCOMPARE(area.readValue[0] + area.readValue[1] + area.writeValue[0] + area.writeValue[1],
                 0);
    }

    void setBit()
    {
        QCOMPARE(_setBitValue(0x0F, 2, 0), 0x0B);
        QCOMPARE(_setBitValue(0x0B, 2, 7), 0x0F);
        QCOMPARE(_setBitValue(0, 31, 1), -2147483647 - 1);
        QCOMPARE(_setBitValue(-1, 31, 0), 2147483647);
    }

    void marks_data()
    {
        // Per data area: its unit, whether it is monitored as a whole, the mask of its bits.
        table({"asked", "areas"},
              {{"words", "D_W 10 x3", "D 10 1/0, D 11 1/0, D 12 1/0"},
               {"bits of two words", "M_bit 1604 x21", "M 100 0/fff0, M 101 0/1ff"},
               {"contacts", "TX 5 x2", "TX 5 1/0, TX 6 1/0"},
               {"bits and words share", "M_W 100 x1, M_bit 1615 x1", "M 100 1/8000"},
               {"overlap", "M_bit 0 x3, M_bit 2 x2", "M 0 0/f"},
               {"stations do not share", "D_W 1 x1, 2:D_W 1 x1", "D 1 1/0, D 1 1/0"},
               {"unknown: a bit type", "Q 3 x2", "Q 3 1/0, Q 4 1/0"},
               {"unknown with _bit: nothing", "Q_bit 3 x2", ""},
               {"less than one", "D_W 1 x0, M_bit 1 x-1", ""}});
    }
    void marks()
    {
        QFETCH(QString, asked);
        intf_addrMerge(keys(asked));
        QStringList areas;
        for (const _DATA_ &area : driver.dataAreaList)
            areas.append(QString("%1 %2 %3/%4")
                             .arg(area.areaName)
                             .arg(area.unitAddr)
                             .arg(area.monitorFlags)
                             .arg(area.bitMonitorMask, 0, 16));
        QTEST(areas.join(", "), "areas");
        intf_addrMerge({});
        for (const _DATA_ &area : driver.dataAreaList)
            QVERIFY(area.monitorFlags == 0 && area.bitMonitorMask == 0);
    }

    void wordChange()
    {
        intf_addrMerge(keys("M_W 100 x1, M_bit 1600 x1, M_bit 1602 x1"));
        const auto reportsOf = [](const int *oldValue, const int *newValue, int skipBits) {
            Panel::self().reports.clear();
            _wordDataChange(oldValue, newValue, 0, skipBits);
            return Panel::self().reports.join(", ");
        };
        const int one = 1, five = 5;
        QCOMPARE(reportsOf(&one, &five, 0), QString("1 M_bit 1602, 1 M_W 100"));
        QCOMPARE(reportsOf(&one, &one, 0), QString("1 M_W 100"));
        QCOMPARE(reportsOf(&one, nullptr, 0), QString("1 M_bit 1600, 1 M_bit 1602, 1 M_W 100"));
        QCOMPARE(reportsOf(nullptr, nullptr, 1), QString("1 M_W 100"));
        QCOMPARE(uchar2int16(0xFF, 0xFF), 65535);
    }

    void readOut_data()
    {
        table(
            {"steps", "seen"},
            {{"low byte first, stations apart",
              "get D_W 9 x1; reply D_W 10 x2 3412CDAB; get D_W 10 x2; get 2:D_W 10 x1",
              "= 0000.; = 3412CDAB.; = 0000."},
             {"a word and its bits", "reply M_W 9 x1 3181; get M_W 9 x1; get M_bit 144 x16",
              "= 3181.; = 01000000010100000100000000000001."},
             {"bits of two words", "reply M_W 9 x2 00800100; get M_bit 159 x2", "= 0101."},
             {"contacts from the middle of a word", "reply TX 5 x3 6000; get TX 5 x3", "= 010100."},
             {"contacts over a word's end", "reply TX 31 x2 00800100; get TX 30 x4", "= 00010100."},
             {"nothing asked", "get D_W 10 x0; get TX 1 x-3", "= .; = ."},
             {"unknown names are bit types, unless they have _bit",
              "write Q 5 x2 0107; get Q 5 x2; write X_W 5 x1 01; get X_W 5 x1; "
              "write Q_bit 5 x1 01; reply Q_bit 5 x1 FFFF; get Q_bit 5 x1",
              "1 Q 5; 1 Q 6; = 0107.; 1 X_W 5; = 01.; = .."},
             {"far off",
              "write D_W -5 x2 12345678; write D_W 2147483647 x2 ABCDEF01; get D_W -5 x2; "
              "get D_W 2147483647 x2; write M_bit -17 x2 0101; get M_bit -18 x4; "
              "write M_bit -1 x1 01; get M_bit 15 x1",
              "= 12345678.; = ABCDEF01.; = 00010100.; = 00."}});
    }
    void readOut() { story(); }

    void controllerValue_data()
    {
        table({"steps", "seen"},
              {{"told once", "monitor D_W 9 x2; reply D_W 9 x2 34120000; reply D_W 9 x2 34120000",
                "1 D_W 9"},
               {"not monitored, not told", "monitor D_W 8 x1; reply D_W 9 x1 3412", ""},
               {"the high byte counts", "monitor D_W 9 x1; reply D_W 9 x1 0001", "1 D_W 9"},
               {"changed bits in order, then the word",
                "monitor M_W 9 x1, M_bit 146 x1, M_bit 144 x1; reply M_W 9 x1 0100; "
                "reply M_W 9 x1 0400",
                "1 M_bit 144; 1 M_W 9; 1 M_bit 144; 1 M_bit 146; 1 M_W 9"},
               {"a bit that stays", "monitor M_bit 144 x1; reply M_W 9 x1 FEFF", ""},
               {"contacts", "monitor TX 5 x3, TX 20 x1; reply TX 5 x3 6000; reply TX 20 x1 1000",
                "1 TX 5; 1 TX 6; 1 TX 20"},
               {"unchanged, it leaves a write showing",
                "write D_W 9 x1 7856; reply D_W 9 x1 0000; get D_W 9 x1", "= 7856."},
               {"changed, it ends the showing",
                "monitor D_W 9 x1; write D_W 9 x1 7856; reply D_W 9 x1 3412; get D_W 9 x1",
                "1 D_W 9; 1 D_W 9; = 3412."},
               {"the same for contacts", "write TX 5 x1 07; reply TX 5 x1 2000; look TX 5 x1",
                "1 TX 5; read 0100 written 0700 shown 0 mask 0"},
               {"a bit write goes on showing in its word",
                "monitor M_W 9 x1; write M_bit 153 x1 01; reply M_W 9 x1 0100; get M_W 9 x1",
                "1 M_W 9; 1 M_W 9; = 0002."},
               {"unless nothing is queued",
                "unsent; write M_bit 153 x1 01; reply M_W 9 x1 0100; get M_W 9 x1", "= 0100."}});
    }
    void controllerValue() { story(); }

    void hostWrite_data()
    {
        table(
            {"steps", "seen"},
            {{"shown at once", "write D_W 9 x1 7856; get D_W 9 x1; look D_W 9 x1",
              "= 7856.; read 0000 written 7856 shown 1 mask 0"},
             {"the same value is written, not told",
              "monitor D_W 9 x1; write D_W 9 x1 0000; look D_W 9 x1",
              "read 0000 written 0000 shown 1 mask 0"},
             {"the high byte counts", "monitor D_W 9 x2; write D_W 9 x2 00010000", "1 D_W 9"},
             {"contacts: told though not monitored, kept as given",
              "write TX 5 x2 0700; look TX 5 x1", "1 TX 5; read 0000 written 0700 shown 1 mask 0"},
             {"one bit of a word", "reply M_W 9 x1 F000; write M_bit 153 x1 01; look M_bit 153 x1",
              "read f000 written f002 shown 1 mask 40000"},
             {"only the byte 1 sets a bit",
              "reply M_W 9 x1 FFFF; write M_bit 153 x1 02; look M_bit 153 x1",
              "read ffff written fffd shown 1 mask 40000"},
             {"a bit of a word that shows a write",
              "write M_W 9 x1 AAAA; write M_bit 144 x1 01; get M_W 9 x1", "= ABAA."},
             {"a third write of a bit replaces the second",
              "write M_bit 153 x1 01; write M_bit 153 x1 00; write M_bit 153 x1 01; "
              "look M_bit 153 x1",
              "read 0000 written 0002 shown 1 mask c0000"},
             {"another range is no second write of the bit",
              "write M_bit 153 x1 01; write M_bit 152 x2 0101; look M_bit 153 x1",
              "read 0000 written 0003 shown 1 mask 50000"},
             {"values outlive a registration",
              "write D_W 9 x1 7856; monitor M_W 0 x1; get D_W 9 x1", "= 7856."},
             {"nobody listens",
              "deaf; monitor D_W 9 x1; write D_W 9 x1 7856; write TX 5 x1 01; "
              "reply D_W 9 x1 3412; failed TX 5 x1; get D_W 9 x1",
              "= 3412."}});
    }
    void hostWrite() { story(); }

    void endOfWrite_data()
    {
        table(
            {"steps", "seen"},
            {{"word acknowledged",
              "monitor D_W 9 x1; write D_W 9 x1 7856; done D_W 9 x1; look D_W 9 x1",
              "1 D_W 9; read 7856 written 7856 shown 0 mask 0"},
             {"word given up",
              "reply D_W 9 x1 3412; monitor D_W 9 x1; write D_W 9 x1 7856; failed D_W 9 x1; "
              "get D_W 9 x1",
              "1 D_W 9; 1 D_W 9; = 3412."},
             {"told even when both are the same",
              "monitor D_W 9 x1; write D_W 9 x1 0000; failed D_W 9 x1", "1 D_W 9"},
             {"of its bits only those that differ",
              "monitor M_bit 144 x16; write M_W 9 x1 0500; failed M_W 9 x1",
              "1 M_bit 144; 1 M_bit 146; 1 M_bit 144; 1 M_bit 146"},
             {"contact acknowledged", "write TX 5 x1 01; done TX 5 x1; look TX 5 x1",
              "1 TX 5; read 0100 written 0100 shown 0 mask 0"},
             {"contact given up", "write TX 5 x1 01; failed TX 5 x1; get TX 5 x1",
              "1 TX 5; 1 TX 5; = 00."},
             {"bit acknowledged: all monitored are told, the others stay as read",
              "reply M_W 9 x1 F000; monitor M_bit 152 x3; write M_bit 153 x1 01; "
              "done M_bit 153 x1; look M_bit 153 x1",
              "1 M_bit 153; 1 M_bit 152; 1 M_bit 153; 1 M_bit 154; "
              "read f002 written f002 shown 0 mask 0"},
             {"bit given up",
              "monitor M_bit 153 x1; write M_bit 153 x1 01; failed M_bit 153 x1; look M_bit 153 x1",
              "1 M_bit 153; 1 M_bit 153; read 0000 written 0002 shown 0 mask 0"},
             {"two writes of one bit end one by one",
              "monitor M_W 9 x1, M_bit 144 x1; write M_bit 153 x1 01; write M_bit 153 x1 01; "
              "look M_bit 153 x1; done M_bit 153 x1; look M_bit 153 x1; done M_bit 153 x1; "
              "look M_bit 153 x1",
              "1 M_W 9; read 0000 written 0002 shown 1 mask c0000; "
              "read 0002 written 0002 shown 1 mask 80000; 1 M_bit 144; 1 M_W 9; "
              "read 0002 written 0002 shown 0 mask 0"},
             {"nothing is told while other bits of the word wait",
              "monitor M_W 9 x1; write M_bit 153 x1 01; write M_bit 144 x1 01; "
              "failed M_bit 153 x1; get M_W 9 x1; done M_bit 144 x1; get M_W 9 x1",
              "1 M_W 9; 1 M_W 9; = 0102.; 1 M_W 9; = 0100."},
             {"a registration in between forgets what waits",
              "write M_bit 153 x1 01; write M_bit 144 x1 01; monitor M_bit 153 x1; "
              "done M_bit 153 x1; look M_bit 153 x1",
              "1 M_bit 153; read 0002 written 0102 shown 0 mask 0"}});
    }
    void endOfWrite() { story(); }

private:
    void story()
    {
        QFETCH(QString, steps);
        for (const QString &step : steps.split("; "))
            play(step);
        QTEST(Panel::self().reports.join("; "), "seen");
    }
};

QTEST_GUILESS_MAIN(CacheTest)
#include "tst_cache.moc"
