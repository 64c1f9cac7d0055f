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

/** One step of a story: a verb and what it is about. What can be seen of it is reported. */
void play(const QString &step)
{
    Panel &panel = Panel::self();
    const QString verb = step.section(' ', 0, 0);
    const QString rest = step.section(' ', 1);
    Range what = ranges(rest + " D_W 0").first();
    if (verb == "monitor") {
        intf_addrMerge(keys(rest));
    } else if (verb == "write") {
        intf_setData(what.station, what.name, what.start, what.count, Panel::bytes(what.values), 0);
    } else if (verb == "reply") {
        driver.sendState = CyclicRead;
        const VARIABLE read = item(what);
        analyzeFrameOfVal("\x06r" + what.values.toHex(), what.count, 2, read);
    } else if (verb == "done" || verb == "failed") {
        _write_FailOrSuc(what.station, what.name, what.start, what.count, verb == "done" ? 1 : 0);
        driver.writeList.removeFirst();
    } else if (verb == "get") {
        panel.reports.append(valuesOf(what));
    } else if (verb == "look") {
        panel.reports.append(areaText(what));
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
               {"filled later", "D5 +D7 +D9 D9 D5 D7", "0 2 0 1"},
               {"first one wins", "+D4 +D5 +D5 D5", "1"},
               {"emptied", "D5 D6 clear D6 D5", "0 1 0 1"},
               {"emptied and filled", "D5 D6 clear +D6 +D5 D5 D6 D7", "0 1 1 0 2"},
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
                        if (unit % 300 != 0 || spread == 1)
                            QCOMPARE(getIndexOfDataArea(station, "D", unit * spread, list),
                                     expected++);
            QCOMPARE(int(list.size()), expected);
        }
    }

    void marks_data()
    {
        // Per data area: its unit, whether it is monitored as a whole, the mask of its bits.
        table({"asked", "areas"},
              {{"words", "D_W 10 x3", "D 10 1/0, D 11 1/0, D 12 1/0"},
               {"bits of two words", "M_bit 1604 x21", "M 100 0/fff0, M 101 0/1ff"},
               {"contacts", "TX 5 x2", "TX 5 1/0, TX 6 1/0"},
               {"bits and words share", "M_W 100, M_bit 1615", "M 100 1/8000"},
               {"overlap", "M_bit 0 x3, M_bit 2 x2", "M 0 0/f"},
               {"stations do not share", "D_W 1, 2:D_W 1", "D 1 1/0, D 1 1/0"},
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

    void story_data()
    {
        table(
            {"steps", "seen"},
            {{"low byte first, stations apart",
              "get D_W 9; reply D_W 10 x2 3412CDAB; get D_W 10 x2; get 2:D_W 10",
              "= 0000.; = 3412CDAB.; = 0000."},
             {"contacts over a word's end", "reply TX 31 x2 00800100; get TX 30 x4", "= 00010100."},
             {"unknown names are bit types, unless they have _bit",
              "write Q 5 x2 0107; get Q 5 x2; write X_W 5 01; get X_W 5; write Q_bit 5 01; reply "
              "Q_bit 5 FFFF; get Q_bit 5",
              "1 Q 5; 1 Q 6; = 0107.; 1 X_W 5; = 01.; = .."},
             {"far off",
              "write D_W -5 x2 12345678; write D_W 2147483647 x2 ABCDEF01; get D_W -5 x2; get D_W "
              "2147483647 x2; write M_bit -17 x2 0101; get M_bit -18 x4; write M_bit -1 01; get "
              "M_bit 15",
              "= 12345678.; = ABCDEF01.; = 00010100.; = 00."},
             // The controller says something.
             {"the high byte counts in a reply", "monitor D_W 9; reply D_W 9 0001", "1 D_W 9"},
             {"a bit that stays", "monitor M_bit 144; reply M_W 9 FEFF", ""},
             {"a contact changed ends the showing of a write",
              "write TX 5 07; reply TX 5 2000; look TX 5",
              "1 TX 5; read 0100 written 0700 shown 0 mask 0"},
             // The host writes.
             {"the same value is written, not told", "monitor D_W 9; write D_W 9 0000; look D_W 9",
              "read 0000 written 0000 shown 1 mask 0"},
             {"the high byte counts", "monitor D_W 9 x2; write D_W 9 x2 00010000", "1 D_W 9"},
             {"one bit of a word", "reply M_W 9 F000; write M_bit 153 01; look M_bit 153",
              "read f000 written f002 shown 1 mask 40000"},
             {"only the byte 1 sets a bit", "reply M_W 9 FFFF; write M_bit 153 02; look M_bit 153",
              "read ffff written fffd shown 1 mask 40000"},
             {"a bit of a word that shows a write",
              "write M_W 9 AAAA; write M_bit 144 01; get M_W 9", "= ABAA."},
             {"a third write of a bit replaces the second",
              "write M_bit 153 01; write M_bit 153 00; write M_bit 153 01; look M_bit 153",
              "read 0000 written 0002 shown 1 mask c0000"},
             {"another range is no second write of the bit",
              "write M_bit 153 01; write M_bit 152 x2 0101; look M_bit 153",
              "read 0000 written 0003 shown 1 mask 50000"},
             // A write comes to its end.
             {"word acknowledged", "monitor D_W 9; write D_W 9 7856; done D_W 9; look D_W 9",
              "1 D_W 9; read 7856 written 7856 shown 0 mask 0"},
             {"of its bits only those that differ",
              "monitor M_bit 144 x16; write M_W 9 0500; failed M_W 9",
              "1 M_bit 144; 1 M_bit 146; 1 M_bit 144; 1 M_bit 146"},
             {"bit acknowledged: all monitored are told, the others stay as read",
              "reply M_W 9 F000; monitor M_bit 152 x3; write M_bit 153 01; done M_bit 153; look "
              "M_bit 153",
              "1 M_bit 153; 1 M_bit 152; 1 M_bit 153; 1 M_bit 154; read f002 written f002 shown 0 "
              "mask 0"},
             {"bit given up",
              "monitor M_bit 153; write M_bit 153 01; failed M_bit 153; look M_bit 153",
              "1 M_bit 153; 1 M_bit 153; read 0000 written 0002 shown 0 mask 0"},
             {"two writes of one bit end one by one",
              "monitor M_W 9, M_bit 144; write M_bit 153 01; write M_bit 153 01; look M_bit 153; "
              "done M_bit 153; look M_bit 153; done M_bit 153; look M_bit 153",
              "1 M_W 9; read 0000 written 0002 shown 1 mask c0000; read 0002 written 0002 shown 1 "
              "mask 80000; 1 M_bit 144; 1 M_W 9; read 0002 written 0002 shown 0 mask 0"}});
    }
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
