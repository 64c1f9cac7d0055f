// What the bench host does without a line: tags and their values, and the commands info, check,
// series, explain and plan with its picture.
#include "host/failure.h"
#include "host/plan/lanes.h"
#include "host/tags.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QRandomGenerator>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtCore/QXmlStreamReader>
#include <QtTest/QtTest>

using namespace host;

namespace {

constexpr double PlotWidth = 900;

const QByteArray TagFile =
    "name,address,format\n\n# a comment\nlevel,D_W:100,float\nlamp,M_bit:20.5\n"
    "count,D_W:106x2,uint32\nword,M_W:21,hex\ncontact,TX:35x3\nfar,D_W:900,\n";

struct Result
{
    int status = -1;
    QString out;
    QString err;
};

Result runHost(const QStringList &arguments)
{
    QProcess process;
    process.start(HOST_PROGRAM, arguments);
    Result result;
    if (process.waitForFinished() && process.exitStatus() == QProcess::NormalExit)
        result.status = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

bool hasMatch(const QString &text, const QString &pattern)
{
    return QRegularExpression(pattern).match(text).hasMatch();
}

}  // namespace

class TestOffline : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void values_data();
    void values();
    void badValues_data();
    void badValues();
    void command_data();
    void command();
    void planInJson();
    void everyTagIsReadAndNothingOverlaps_data();
    void everyTagIsReadAndNothingOverlaps();
    void bestBlockLimitIsTheBest();
    void picture();
    void everyOptionIsDocumented();

private:
    QString file(const char *name) const { return m_folder.filePath(QString(name)); }
    void save(const char *name, const QByteArray &text) const;
    Tag tag(const QString &text) const
    {
        return parseTags(m_driver, m_identity, {text}, 0).first();
    }

    QTemporaryDir m_folder;
    Driver m_driver;
    Identity m_identity;
};

void TestOffline::save(const char *name, const QByteArray &text) const
{
    QFile out(file(name));
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write(text);
}

void TestOffline::initTestCase()
{
    m_driver = loadDriver(DRIVER_LIBRARY);
    m_identity = identify(m_driver);
    save("tags.csv", TagFile);
    save("wrong.csv", "name,address\nlevel,D_W:100\n\nflood,D_W:32767:float\n");
    save("columns.csv", "name,address,colour\n");
    save("empty.csv", "name,address,format\n# nothing\n");
    save("good.trace",
         "2026-11-22T22:41:05.123  ->  02 72 61 43 38 30 30 30 30 30 34 37 32 03  read 2 words\n"
         "2026-11-22T22:41:05.126  <-  06 72 33 34 31 32 43 44 41 42 34 36 04  2 words\n");
    save("bad.trace",
         "2026-11-22T22:41:05.123  ->  02 72 61 43 38 30 30 30 30 30 34 37 32 03  read 2 words\n"
         "2026-11-22T22:41:05.623  <-  -  no reply\n");
    save("no.trace", "something else\n");
}

void TestOffline::values_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QVector<int>>("units");
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << "D_W:1x3" << QVector<int>{0, 1, 65535} << "0,1,65535";
    QTest::newRow("bits") << "M_bit:1.14x3" << QVector<int>{1, 0, 1} << "1,0,1";
    QTest::newRow("int16") << "D_W:1x3:int16" << QVector<int>{32767, 32768, 65535}
                           << "32767,-32768,-1";
    QTest::newRow("uint16") << "D_W:1:uint16" << QVector<int>{65535} << "65535";
    QTest::newRow("int32") << "D_W:1x2:int32" << QVector<int>{65534, 65535, 0, 32768}
                           << "-2,-2147483648";
    QTest::newRow("uint32") << "D_W:1x2:uint32" << QVector<int>{1, 2, 65535, 65535}
                            << "131073,4294967295";
    QTest::newRow("hex") << "D_W:1x2:hex" << QVector<int>{0x1F, 0xABCD} << "0x001F,0xABCD";
    QTest::newRow("float") << "D_W:1x2:float" << QVector<int>{0, 0x3FC0, 0xCCCD, 0x3DCC}
                           << "1.5,0.1";
    QTest::newRow("float that needs nine digits")
        << "D_W:1:float" << QVector<int>{0x0001, 0x4B80} << "16777218";
}

void TestOffline::values()
{
    QFETCH(QString, address);
    QFETCH(QVector<int>, units);
    QFETCH(QString, text);
    const Tag read = tag(address);
    QCOMPARE(read.point.count, int(units.size()));
    QCOMPARE(formatValues(read, units).join(','), text);
    QCOMPARE(parseValues(read, text), units);
}

void TestOffline::badValues_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("too many") << "D_W:1x2"
                              << "1,2,3"
                              << "expected 2 value";
    QTest::newRow("nothing") << "D_W:1"
                             << ""
                             << "from 0 to 65535";
    QTest::newRow("too high") << "D_W:1"
                              << "65536"
                              << "from 0 to 65535";
    QTest::newRow("no sign") << "D_W:1"
                             << "-1"
                             << "from 0 to 65535";
    QTest::newRow("int16") << "D_W:1:int16"
                           << "32768"
                           << "from -32768 to 32767";
    QTest::newRow("int32") << "D_W:1:int32"
                           << "2147483648"
                           << "from -2147483648 to";
    QTest::newRow("no number") << "D_W:1:float"
                               << "1,5"
                               << "expected 1 value";
    QTest::newRow("not a number at all") << "D_W:1:float"
                                         << "warm"
                                         << "a number";
    QTest::newRow("no bit") << "TX:1"
                            << "2"
                            << "0 or 1";
    QTest::newRow("no hex") << "D_W:1:hex"
                            << "12G"
                            << "hexadecimal";
}

void TestOffline::badValues()
{
    QFETCH(QString, address);
    QFETCH(QString, text);
    QFETCH(QString, expected);
    try {
        parseValues(tag(address), text);
        QFAIL("taken");
    } catch (const Failure &failure) {
        QCOMPARE(failure.status(), BadInput);
        QVERIFY2(QString(failure.what()).contains(expected), failure.what());
    }
}

void TestOffline::command_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("out");  // patterns
    QTest::addColumn<QString>("err");
    const auto row = [](const char *name, const QStringList &arguments, int status, const char *out,
                        const char *err = "^$") {
        QTest::newRow(name) << arguments << status << QString(out) << QString(err);
    };
    const auto refused = [&](const char *name, const QStringList &arguments, const char *err) {
        row(name, arguments, BadInput, "^$", err);
    };
    const QString tags = file("tags.csv");

    row("info", {"info"}, 0,
        "tolvane_link 2\\.0\\.0\\.0[^$]*115200,8,NONE,1[^$]*"
        "M_bit +DDDD\\.DD +0\\.0 +2047\\.15 +bit +read and write\n");
    refused("info of nothing", {"info", "D_W"}, "\"D_W\".*info --help");

    row("check", {"check", "D_W:0x10", tags}, 0,
        "^D_W:0x10: valid, 10 words .*\nlevel: valid, 2 words .*\nlamp: valid, 1 bit .*number 325");
    row("check what is not valid", {"check", "D_W:32767x2", "M_bit:1.16", "X:1", file("wrong.csv")},
        1,
        "^argument 1: .*from 0 to 32767\nargument 2: .*\"1\\.16\".*DDDD\\.DD\n"
        "argument 3: .*\"X\".*\n  P_W, .*\nlevel: valid.*\nwrong\\.csv:4: tag \"flood\": "
        ".*32767\n  \\(a value takes 2 words\\)\n$");
    refused("check no tag file", {"check", file("none.csv")}, "none\\.csv: No such file");
    refused("check another file", {"check", file("columns.csv")},
            "columns\\.csv:1: \"colour\": expected columns out of name, ");
    refused("check an empty file", {"check", file("empty.csv")}, "no tag in .*empty\\.csv");

    row("series", {"series", "M_bit:20.15", "--count", "2"}, 0,
        "M_bit:20\\.15 .*335\n.*21\\.0 .*336");
    row("series of 32-bit values to the end",
        {"series", "D_W:32766", "--count", "2", "--step", "-2"}, 0, "32766 .*\n.*32767",
        "beyond D_W:32767");
    refused("series without end", {"series", "D_W:1", "--count", "0"}, "--count \"0\": expected");

    row("explain a request and its reply",
        {"explain", "0272614338303030303034373203 0672333431324344414234 36 04"}, 0,
        "-> 02 72 61 .*\n   read 2 words of D from word 100\n   checksum 72: right\n\n"
        "<- 06 .*\n   2 words: 4660, 43981\n.*right\n\n2 frames, none wrong\n$");
    row("explain bytes one by one, and point at the checksum",
        QString("explain 02 72 61 43 38 30 30 30 30 30 34 37 33 03").split(' '), 1,
        "37 33 03\n {36}\\^\\^\n   wrong: checksum 73, but .* 72\n");
    row("explain a trace", {"explain", file("good.trace")}, 0,
        "^2026-11-22T22:41:05.123\n-> [^$]*2 words: 4660, 43981[^$]*none wrong\n$");
    row("explain what is wrong in a trace", {"explain", "--wrong", file("bad.trace")}, 1,
        "05.123\n-> [^$]*\n2026-11-22T22:41:05.623\n<- no reply\n\n2 frames, 1 wrong\n$");
    refused("explain words", {"explain", "02", "hello"}, "\"hello\" is no frame; expected");
    refused("explain no trace", {"explain", file("no.trace")}, "no\\.trace:1: \"something else\"");

    // 14 + 9 bytes of 10 and of 11 bits
    row("plan one word", {"plan", "D_W:5"}, 0, "D_W:5 +1 +- +14 +9 +2\\.00 ms  D_W:5\n");
    row("plan on a slow line", {"plan", "D_W:5", "--serial", "9600,8,EVEN,1", "--turnaround", "10"},
        0, "26\\.35 ms  D_W:5\n[^$]*1 request, 23 bytes, 36\\.35 ms: 27\\.5 cycles");
    row("plan a gap that is bridged", {"plan", "D_W:0", "D_W:9", "--block-limit", "10"}, 0,
        "D_W:0x10 +10 +8 ");
    row("plan a gap that is not", {"plan", "D_W:0", "D_W:9", "--suggest"}, 0,
        "D_W:0x10 +10 +8 [^$]*block limit of 1: 2 requests, 46 bytes[^$]*% shorter than with 64");
    refused("plan nothing", {"plan"}, "expected a tag file");
    refused("plan blocks too long", {"plan", "D_W:5", "--block-limit", "128"}, "from 1 to 127");
    refused("plan on no line", {"plan", "D_W:5", "--serial", "fast"}, "\"fast\"");
    refused("plan out of range", {"plan", file("wrong.csv")}, "wrong\\.csv:4: tag \"flood\"");
    refused("draw into nowhere", {"plan", "D_W:5", "--svg", "/nowhere/plan.svg"},
            "/nowhere/plan\\.svg: No such file");
}

void TestOffline::command()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, out);
    QFETCH(QString, err);
    const Result result = runHost(arguments);
    QTEST(result.status, "status");
    QVERIFY2(hasMatch(result.out, out), qPrintable(result.out));
    QVERIFY2(hasMatch(result.err, err), qPrintable(result.err));
    for (const QString &line : result.out.split('\n'))
        QVERIFY2(line.size() <= 100, qPrintable(line));
}

void TestOffline::planInJson()
{
    const Result result = runHost({"plan", "--json", "--suggest", file("tags.csv")});
    const QJsonObject plan = QJsonDocument::fromJson(result.out.toUtf8()).object();
    QStringList blocks;
    for (const QJsonValue &value : plan["blocks"].toArray()) {
        QStringList names;
        for (const QJsonValue &name : value.toObject()["tags"].toArray())
            names += name.toString();
        blocks += value.toObject()["block"].toString() + ' ' + names.join('+');
    }
    QCOMPARE(blocks, (QStringList{"M_W:20x2 lamp+word", "D_W:100x10 level+count", "D_W:900 far",
                                  "TX:35x3 contact"}));
    QCOMPARE(plan["cycle"].toObject()["bytes"].toInt(), 4 * 19 + 4 * (2 + 10 + 1 + 3));
    QCOMPARE(plan["requestPerTag"].toObject()["requests"].toInt(), 6);
    QVERIFY(plan["suggestion"].toObject()["ms"].toDouble() <=
            plan["cycle"].toObject()["ms"].toDouble());
}

void TestOffline::everyTagIsReadAndNothingOverlaps_data()
{
    QTest::addColumn<int>("reach");  // of the addresses
    QTest::addColumn<int>("blockLimit");
    for (const int reach : {20, 300, 2000})
        for (const int blockLimit : {1, 16, 127})
            QTest::newRow(qPrintable(QString("%1 words, %2").arg(reach).arg(blockLimit)))
                << reach << blockLimit;
}

void TestOffline::everyTagIsReadAndNothingOverlaps()
{
    QFETCH(int, reach);
    QFETCH(int, blockLimit);
    QRandomGenerator dice(static_cast<quint32>(reach + blockLimit));
    QVector<Tag> tags;
    QVector<Point> points;
    for (int i = 0; i < 150; ++i) {
        const char *type[] = {"D_W:%1x%2", "M_W:%1x%2", "M_bit:%1.7x%2", "TX:%1x%2"};
        const int longest = i % 50 == 0 ? 40 : 3;
        tags += tag(
            QString(type[dice.bounded(4)]).arg(dice.bounded(reach)).arg(1 + dice.bounded(longest)));
        points += tags.last().point;
    }
    SessionSettings settings;
    settings.blockLimit = blockLimit;
    Session session(m_driver, settings);
    QVector<Block> blocks = walkCycle(m_driver, session, m_identity, points);
    assignTags(blocks, tags);

    QVector<int> unread(tags.size(), 1);
    for (const Block &block : blocks) {
        QCOMPARE(block.replyBytes, 5 + 4 * block.words);
        QVERIFY(!block.tags.isEmpty());
        QVERIFY(block.bridgedCount() < block.point.count);
        for (const int index : block.tags)
            unread[index] = 0;
    }
    QCOMPARE(unread.count(1), 0);

    int drawn = 0;
    for (const Row &row : layOutLanes(blocks, tags, PlotWidth)) {
        drawn += int(row.blocks.size());
        for (int i = 1; i < int(row.segments.size()); ++i)
            QVERIFY(row.segments[i].left > row.segments[i - 1].right());
        QVERIFY(row.segments.last().right() <= PlotWidth + 1);
        for (int i = 1; i < int(row.tags.size()) - row.tagsUnnamed; ++i)
            QVERIFY(row.tags[i].labelAt - row.tags[i - 1].labelAt > LabelStep - 0.01);
        for (const QVector<Bar> &bars : {row.blocks, row.tags})
            for (int i = 0; i < int(bars.size()); ++i)
                for (int k = 0; k < i; ++k)
                    QVERIFY(bars[i].level != bars[k].level ||
                            bars[i].place.left >= bars[k].place.right - 0.1);
    }
    QCOMPARE(drawn, int(blocks.size()));
}

void TestOffline::bestBlockLimitIsTheBest()
{
    QVector<Point> points;
    for (const char *address : {"D_W:0", "D_W:4", "D_W:5x3", "D_W:20", "D_W:90x8", "M_bit:3.5"})
        points += tag(address).point;
    const LineCosts line{SerialSettings::parse(m_identity.serialLine),
                         std::chrono::milliseconds(3)};
    Session session(m_driver, SessionSettings());
    const BlockLimit best = bestBlockLimit(m_driver, session, m_identity, points, line);
    for (int words = 1; words <= LongestBlock; ++words) {
        session.restart(SessionSettings{1, 3, words});
        const auto time = costsOf(walkCycle(m_driver, session, m_identity, points), line).time;
        QVERIFY(words < best.words ? time > best.costs.time : time >= best.costs.time);
    }
}

void TestOffline::picture()
{
    const Result result = runHost({"plan", file("tags.csv"), "--svg", file("plan.svg")});
    QCOMPARE(result.status, 0);
    QFile svg(file("plan.svg"));
    QVERIFY(svg.open(QIODevice::ReadOnly));
    QXmlStreamReader in(&svg);
    QStringList texts;
    int hatched = 0;
    while (!in.atEnd()) {
        in.readNext();
        if (in.isCharacters() && !in.isWhitespace())
            texts += in.text().toString();
        hatched += in.isStartElement() && in.attributes().value("fill") == QString("url(#hatch)");
    }
    QVERIFY2(!in.hasError(), qPrintable(in.errorString()));
    QCOMPARE(hatched, 2);  // words 102 to 105, and the legend
    for (const char *text :
         {"level", "lamp", "count", "word", "contact", "far", "D_W", "M_W", "TX"})
        QVERIFY2(texts.contains(text), text);
    for (const char *address : {"100", "900", "20", "35"})
        QVERIFY2(texts.contains(address), address);
}

void TestOffline::everyOptionIsDocumented()
{
    QByteArray manual;
    QByteArray completion;
    for (const auto &[name, text] : {std::make_pair("tolvane-host.1", &manual),
                                     std::make_pair("tolvane-host.bash", &completion)}) {
        QFile in(QString(HOST_SOURCES "/") + name);
        QVERIFY(in.open(QIODevice::ReadOnly));
        *text = in.readAll().replace("\\-", "-");
    }
    static const QRegularExpression commandRow("^  ([a-z]+) +",
                                               QRegularExpression::MultilineOption);
    static const QRegularExpression optionRow("^  (?:-h, )?(--[a-z-]+)",
                                              QRegularExpression::MultilineOption);
    int commands = 0;
    for (auto rows = commandRow.globalMatch(runHost({"--help"}).out); rows.hasNext(); ++commands) {
        const QString command = rows.next().captured(1);
        QVERIFY2(manual.contains(command.toLatin1()), qPrintable(command));
        QVERIFY2(completion.contains(command.toLatin1()), qPrintable(command));
        auto options = optionRow.globalMatch(runHost({command, "--help"}).out);
        QVERIFY(options.hasNext());
        while (options.hasNext()) {
            const QString option = options.next().captured(1);
            QVERIFY2(manual.contains(option.toLatin1()), qPrintable(command + ' ' + option));
            QVERIFY2(completion.contains(option.toLatin1()), qPrintable(command + ' ' + option));
        }
    }
    QVERIFY(commands >= 11);
}

QTEST_GUILESS_MAIN(TestOffline)
#include "tst_offline.moc"
