// What the bench host does with files and addresses, without a line: tags and their values, tag
// files and recipes, a full disk, and what a plan and its picture must hold to.
#include "host/exchange/controller_process.h"
#include "host/output/csv.h"
#include "host/output/failure.h"
#include "host/output/output_file.h"
#include "host/plan/picture.h"
#include "host/tags/recipe_file.h"
#include "host/tags/recipe_transfer.h"
#include "host/tags/tags.h"

#include "program.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QRectF>
#include <QtCore/QTemporaryDir>
#include <QtCore/QXmlStreamReader>

using namespace host;

namespace {

/** What the call says when it throws; empty when it does not. */
template <typename Call>
QString refusal(Call call, ExitStatus status = BadInput)
{
    try {
        call();
    } catch (const Failure &failure) {
        return failure.status() == status ? QString::fromUtf8(failure.what()) : "another status";
    }
    return QString();
}

}  // namespace

class TestOffline : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void values();
    void badValues();
    void tagFiles();
    void recipesKeepTheirComments();
    void incompleteRecipeReadIsNone();
    void fullDiskKeepsTheOldFile();
    void everyTagIsPlannedAndDrawn();

private:
    QString file(const char *name) const { return m_folder.filePath(QString(name)); }
    void save(const char *name, const QByteArray &text) const;
    void checkPlan(int reach, int blockLimit);
    Tag tag(const QString &text) const { return parseTags(m_driver, {text}).first(); }

    QTemporaryDir m_folder;
    Driver m_driver;
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
}

void TestOffline::values()
{
    const struct
    {
        const char *address;
        QVector<int> units;
        const char *text;
    } rows[] = {
        {"D_W:1x3", {0, 1, 65535}, "0,1,65535"},
        {"M_bit:1.14x3", {1, 0, 1}, "1,0,1"},
        {"D_W:1x3:int16", {32767, 32768, 65535}, "32767,-32768,-1"},
        {"D_W:1x2:int32", {65534, 65535, 0, 32768}, "-2,-2147483648"},
        {"D_W:1:int32-be", {65535, 65534}, "-2"},
        {"D_W:1x2:uint32", {1, 2, 65535, 65535}, "131073,4294967295"},
        {"D_W:1:bin", {0x8005}, "0b1000000000000101"},
        {"D_W:1x3:bcd", {0x1234, 0x0A00, 0}, "1234,0x0A00,0"},  // the second is no BCD number
        {"D_W:1x2:float", {0, 0x3FC0, 0xCCCD, 0x3DCC}, "1.5,0.1"},
        {"D_W:1:float", {0x0001, 0x4B80}, "16777218"},  // needs eight digits
        {"D_W:1x2:string:3", {0x6261, 0x63, 0, 0}, "abc,"},
        {"D_W:1:string-be:4", {0x612C, 0x5C00}, "\"a,\\\\\""},
        {"D_W:1:string:4", {0x0041, 0xFC42}, "A\\x00B\xC3\xBC"},
        {"D_W:1:string:4", {0x6122, 0x2262}, "\"\"\"ab\"\"\""},         // a text in quotes
        {"D_W:1x3:string:2", {0x313D, 0x2D27, 0x612D}, "'=1,''-,'-a"},  // no formulas
        {"D_W:1x2:string:2", {0x312D, 0x6127}, "-1,'a"},
    };
    for (const auto &row : rows) {
        const Tag read = tag(row.address);
        QCOMPARE(read.point.count, int(row.units.size()));
        QStringList fields = formatValues(read, row.units);
        QCOMPARE(parseValues(read, fields), row.units);
        std::transform(fields.begin(), fields.end(), fields.begin(), csvField);
        QCOMPARE(fields.join(','), QString(row.text));
        QCOMPARE(parseValues(read, csvFields(row.text, ',', "row")), row.units);
    }
}

void TestOffline::badValues()
{
    const char *const rows[][3] = {
        {"D_W:1x2", "1,2,3", "expected 2 value"},
        {"D_W:1:int16", "32768", "from -32768 to 32767"},
        {"D_W:1:float", "warm", "a number"},
        {"D_W:1:bin", "2", "binary"},
        {"TX:1", "2", "0 or 1"},
        {"D_W:1:hex", "12G", "hexadecimal"},
        {"D_W:1:bcd", "10000", "from 0 to 9999"},
        {"D_W:1:string:3", "abcd", "at most 3 characters"},
        {"D_W:1:string:4", "a\\q", "\\\\ for a backslash"},
        {"D_W:1:string:4", "\\x4", "\\x00 to \\xff"},
        {"D_W:1:string:4", "\\x+4", "\\x00 to \\xff"},
    };
    for (const auto &[address, text, expected] : rows) {
        const QString said = refusal([&, where = address, what = text] {
            parseValues(tag(where), QString(what).split(','));
        });
        QVERIFY2(said.contains(expected), qPrintable(said));
    }
}

void TestOffline::tagFiles()
{
    // The text; station/number name value-of-1000 unit of the tags, or what is wrong.
    const std::pair<QByteArray, const char *> rows[] = {
        {"a, D_W:1 ,int16\r\nb,D_W:2,\n", "^1/1 a 1000 ; 1/2 b 1000 ; $"},
        {"\xEF\xBB\xBF"
         "Station,Unit,Address,NAME,Scale,decimals,offset,comment,,\n"
         "2,bar,D_W:1,\"'=low, in,\",0.01,1,-3,\"the \"\"old\"\" one\",,\n,,D_W:2\n,,,,,,,,,\n",
         "^2/1 =low, in, 7.0 bar; 1/2 D_W:2 1000 ; $"},
        {"name;address;scale\na;3/D_W:1;0,5\n", "^3/1 a 500 ; $"},
        {"name,address\n\"a,D_W:1\n", "t.csv:2: .*quote to be closed"},
        {"name,address,colour\n", "t.csv:1: \"colour\": expected columns out of"},
        {"name,address\n\n# no\na,\n", "t.csv:4: .*address must not be missing"},
        {"address,decimals\nD_W:1,13\n", "t.csv:2: \"13\": .*decimals from 0 to 12"},
        {"address,scale\nD_W:1,0\n", "t.csv:2: \"0\": .*scale that is not 0"},
        {"address,scale,format\nD_W:1,2,hex\n", "t.csv:2: .*are for numbers"},
        {"address,station\n1/D_W:1,2\n", "t.csv:2: .*one station"},
        {"address,station\nD_W:1,256\n", "t.csv:2: .*station from 0 to 255"},
        {"f\xFCll,D_W:1\n", "t.csv:1: .*expected text in UTF-8"},
        {QByteArray("a,D_W:1\nb,D\0_W:2\nc,D_W:3\n", 26),
         "t.csv:2: \"b,D.x00_W:2\": expected text"},
        {"a,D_W:1\n\nb,D_W:2\na,D_W:3\n", "^t.csv:4: tag \"a\": .*, t.csv:1$"},
        {",,,\n", "there is no tag in .*t.csv"},
    };
    for (const auto &[text, tags] : rows) {
        save("t.csv", text);
        QString found;
        found += refusal([&] {
            for (const Tag &tag : parseTags(m_driver, {}, {file("t.csv")}))
                found += QString("%1/%2 %3 %4 %5; ")
                             .arg(tag.point.stationNo)
                             .arg(tag.point.address)
                             .arg(tag.name, formatValues(tag, {1000}).first(), tag.unit);
        });
        QVERIFY2(hasMatch(found, tags), qPrintable(found));
    }
}

void TestOffline::recipesKeepTheirComments()
{
    save("r.csv",
         "# mixer 2\n\naddress;values\nD_W:1x2;;\n# name\n2/D_W:5:string:4;\"a;,b\";;\n"
         "D_W:7:float;1,5;\n\n# end\n");
    Recipe recipe = readRecipeFile(m_driver, file("r.csv"));
    QCOMPARE(recipe.rows[1].values, QStringList("a;,b"));
    QCOMPARE(recipe.rows[2].values, QStringList("1.5"));
    recipe.setValues(0, {7, 8});
    recipe.setValues(2, {0, 0x4010});
    QCOMPARE(recipe.rowOf(tag("D_W:9"), "D_W:9"), 3);
    recipe.setValues(3, {9});
    writeRecipeFile(file("r.csv"), recipe);
    QFile written(file("r.csv"));
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(),
             QByteArray("# mixer 2\n\naddress;values\nD_W:1x2;7;8\n# name\n"
                        "2/D_W:5:string:4;\"a;,b\";;\nD_W:7:float;2,25\n\n# end\nD_W:9;9\n"));
}

void TestOffline::incompleteRecipeReadIsNone()
{
    const ControllerProcess controller(PLC_PROGRAM, {});
    QCommandLineParser options;
    options.addOption({"driver", "", "path"});
    addConnectionOptions(options);
    QVERIFY(options.parse({"", "--driver", DRIVER_LIBRARY, "--port", controller.device()}));
    Connection connection(options);
    RecipeTransfer transfer(connection, parseTags(connection.driver(), {"D_W:0x300"}));
    connection.open(Purpose::Reading);
    // As if the driver told of the first words only.
    connection.session().setRecipe({tag("D_W:0x100").point});
    QVERIFY_EXCEPTION_THROWN(transfer.read(), Failure);
}

void TestOffline::fullDiskKeepsTheOldFile()
{
    const char *const full = "No space left on device";
    QVERIFY(refusal([] { replaceFile("/dev/full", "text"); }, SomethingFailed).contains(full));
    const QString script =
        "mount -t tmpfs -o size=16k none %1 && cd %1 || exit 99; echo '#old' | tee r.csv > i.csv; "
        "head -c 99999 /dev/zero > filler; %2 recipe pull r.csv D_W:1 --simulate; echo host $?; "
        "echo D,1,5 > i.csv; %3 --still --save --image i.csv > %1.out & "
        "until [ -s %1.out ]; do sleep 0.01; done; kill $!; wait $!; echo plc $?; cat r.csv i.csv";
    QVERIFY(QDir(m_folder.path()).mkdir("disk"));
    const Result result = runProgram(
        "unshare", {"-rm", "sh", "-c", script.arg(file("disk"), HOST_PROGRAM, PLC_PROGRAM)});
    if (result.status != 0)
        QSKIP("a full file system cannot be mounted here");
    QCOMPARE(result.out, QString("host 1\nplc 1\n#old\nD,1,5\n"));
    QCOMPARE(result.err.count(full), 3);  // head says it, too
}

void TestOffline::everyTagIsPlannedAndDrawn()
{
    for (const int reach : {20, 300, 9000})  // of the addresses
        for (const int blockLimit : {1, 16, 127})
            checkPlan(reach, blockLimit);
}

void TestOffline::checkPlan(int reach, int blockLimit)
{
    QRandomGenerator dice(static_cast<quint32>(reach + blockLimit));
    QVector<Tag> tags{tag("L_W:0x300"), tag("2/L_W:5"), tag("N_W:0x80"), tag("N_W:90")};
    for (int i = 0; i < 150; ++i) {
        const char *type[] = {"D_W:%1x%2", "M_bit:%1.7x%2", "2/D_W:%1x%2", "TX:%1x%2"};
        const int most = i % 2 == 0 ? reach : std::min(reach, 2000);
        const int longest = i % 50 == 0 ? 40 : 3;
        tags += tag(QString(type[i % 4]).arg(dice.bounded(most)).arg(1 + dice.bounded(longest)));
    }
    tags[0].name = "<b>&\"%1]]>\x01\x1B[2J" + QString(300, 'W');
    const QString shown = "<b>&\"%1]]>\uFFFD\uFFFD[2J" + QString(300, 'W');
    PlannedLine line;
    line.serial = SerialSettings::parse("9600,8,EVEN,1");
    line.turnaround = std::chrono::milliseconds(7);
    const Plan plan = planCycle(m_driver, tags, line, blockLimit, false);

    QStringList titles;
    QHash<QString, QVector<QRectF>> bars;  // of the rows, by their colour
    QXmlStreamReader picture(drawPlan(m_driver, plan));
    while (!picture.atEnd()) {
        picture.readNext();
        const auto attribute = [&](const char *name) {
            return picture.attributes().value(QString(name)).toString();
        };
        if (picture.isStartElement() && picture.name() == QString("title"))
            titles += picture.readElementText();
        else if (picture.isStartElement() && picture.name() == QString("rect") && !titles.isEmpty())
            bars[attribute("class")] +=
                QRectF(attribute("x").toDouble(), attribute("y").toDouble(),
                       attribute("width").toDouble(), attribute("height").toDouble());
    }
    QVERIFY2(!picture.hasError(), qPrintable(picture.errorString()));
    QCOMPARE(titles.size(), plan.blocks.size());
    for (const char *kind : {"request", "turnaround", "reply"})
        QCOMPARE(bars[kind].size(), plan.blocks.size());
    // The scale, by the first of the charts, which are of 25 rows.
    const QVector<Block> chart = plan.blocks.mid(0, 25);
    const double begin = bars["request"][0].left();
    const double scale = (bars["reply"][chart.size() - 1].right() - begin) /
                         static_cast<double>(line.time(costsOf(chart)).count());
    const auto near = [](double left, double right) { return std::abs(left - right) < 0.05; };

    QVector<int> unread(tags.size(), 1);
    double at = begin;
    double top = 0;
    for (int i = 0; i < int(plan.blocks.size()); ++i) {
        const Block &block = plan.blocks[i];
        for (int index = 0; index < int(tags.size()); ++index) {
            const bool reads = partInside(tags[index].point, block.point).count > 0;
            QCOMPARE(block.tags.contains(index), reads);
            unread[index] &= !reads;
            QVERIFY(!reads || titles[i].contains(index == 0 ? shown : tags[index].name));
        }

        if (i % 25 == 0)
            at = begin;
        const std::pair<QRectF, std::chrono::microseconds> expected[] = {
            {bars["request"][i], line.wireTime(block.requestBytes)},
            {bars["turnaround"][i], line.turnaround},
            {bars["reply"][i], line.wireTime(block.replyBytes)}};
        for (const auto &[bar, time] : expected) {
            QVERIFY(near(bar.left(), at));
            at += scale * static_cast<double>(time.count());
            QVERIFY(near(bar.right(), at) && at < 900 && bar.top() > top);
        }
        const QRectF reply = bars["reply"][i];
        top = reply.bottom();
        for (int word = 0; word < block.point.count; ++word) {
            Point unit = block.point;
            unit.address += word;
            unit.count = 1;
            const QPointF middle(reply.left() + reply.width() * (word + 0.5) / block.point.count,
                                 reply.center().y());
            QVERIFY(
                std::any_of(block.tags.begin(), block.tags.end(),
                            [&](int tag) { return partInside(tags[tag].point, unit).count > 0; }) !=
                std::any_of(bars["unused"].begin(), bars["unused"].end(),
                            [&](const QRectF &bar) { return bar.contains(middle); }));
        }
    }
    QCOMPARE(unread.count(1), 0);
}

QTEST_GUILESS_MAIN(TestOffline)
#include "tst_offline.moc"
