// The built library as a panel meets it: its symbols and dependencies, and the layout of the
// records that cross the border.
#include <QtCore/QFile>
#include <QtTest/QtTest>

#include <cstddef>
#include <cstdio>
#include <type_traits>
#include <vector>

#include "host_interface.h"

namespace {

/** Output lines of a command of the tool chain, run on the library. */
QStringList lines(const char *command)
{
    // Not QProcess: it starts nothing under qemu-arm, which lacks flags of clone() that Qt uses.
    FILE *pipe = popen((QByteArray(command) + " '" TOLVANE_LIBRARY "'").constData(), "r");
    QFile output;
    if (!pipe || !output.open(pipe, QIODevice::ReadOnly))
        return QStringList("- cannot run " + QString(command));
    const QString text = QString(output.readAll()).trimmed();
    output.close();  // flushes, so before the pipe is gone
    return pclose(pipe) == 0 ? text.split('\n') : QStringList("- failed: " + QString(command));
}

/**
 * Whether a record's fields stand in this order, aligned as usual, and begin as 0: "i" an int, "s"
 * a text, "b" a kilobyte, "v" an item.
 */
template <typename Record>
bool isLaidOut(const char *fields, const std::vector<size_t> &offsets)
{
    typename std::aligned_storage<sizeof(Record), alignof(Record)>::type storage;
    std::memset(&storage, 0xFF, sizeof storage);
    Record *const record = new (&storage) Record;
    const QByteArray begun(reinterpret_cast<const char *>(record), sizeof(Record));
    record->~Record();
    size_t end = 0;
    const auto alignTo = [&end](size_t bytes) { end = (end + bytes - 1) / bytes * bytes; };
    for (size_t i = 0; i < offsets.size(); ++i) {
        const char kind = fields[i];
        alignTo(kind == 'i' ? 4 : kind == 'b' ? 1 : sizeof(void *));
        const size_t bytes = kind == 'i'   ? 4
                             : kind == 'b' ? 1024
                             : kind == 's' ? sizeof(QString)
                                           : sizeof(VARIABLE);
        const bool isNumber = kind == 'i' || kind == 'b';
        if (offsets[i] != end ||
            (isNumber && begun.mid(int(end), int(bytes)) != QByteArray(int(bytes), 0)))
            return false;
        end += bytes;
    }
    alignTo(sizeof(void *));
    return end == sizeof(Record) && std::is_standard_layout<Record>::value;
}

}  // namespace

class LibraryTest : public QObject
{
    Q_OBJECT

private slots:
    void exportsNothingElse()
    {
        const QStringList symbols = lines("nm -D --defined-only");
        for (const QString &symbol : symbols)
            QVERIFY2(symbol.section(' ', 1).startsWith("T intf_"), qPrintable(symbol));
        QCOMPARE(int(symbols.size()), 19);
    }

    void needsQtCoreOnly()
    {
        QStringList qt, own;
        for (const QString &line : lines("readelf -d")) {
            const QString name = line.section('[', 1).section(']', 0, 0);
            if (line.indexOf("(NEEDED)") >= 0 && name.indexOf("Qt") >= 0)
                qt << name;
            if (line.indexOf("(SONAME)") >= 0)
                own << name;
        }
        const int generation = QT_VERSION >> 16;
        const QString core(generation == 4 ? "libQtCore.so.%1" : "libQt%1Core.so.%1");
        QCOMPARE(qt, QStringList(core.arg(generation)));
        QCOMPARE(own, QStringList("libtolvane_link.so.2"));
    }

    void asksForNoNewerLibrary_data()
    {
        QTest::addColumn<QString>("newest");  // that a panel of 2012 has
        QTest::newRow("C") << "GLIBC_2.14";
        QTest::newRow("C++") << "GLIBCXX_3.4";
        QTest::newRow("C++ runtime") << "CXXABI_1.3";
    }

    void asksForNoNewerLibrary()
    {
        QFETCH(QString, newest);
        const QString family = newest.section('_', 0, 0) + '_';
        const auto number = [&family](const QString &version) {
            std::vector<int> parts;
            for (const QString &part : version.mid(int(family.size())).split('.'))
                parts.push_back(part.toInt());
            return parts;
        };
        const QStringList asked = lines("readelf -VW").filter("Name: ");
        QVERIFY(!asked.isEmpty());
        for (const QString &line : asked) {
            const QString version = line.section("Name: ", 1).section(' ', 0, 0);
            QVERIFY2(!version.startsWith(family) || number(version) <= number(newest),
                     qPrintable(version));
        }
    }

    void isHardened()
    {
        QCOMPARE(int(lines("readelf -d").filter("BIND_NOW").size()), 1);
        QCOMPARE(int(lines("readelf -lW").filter("GNU_RELRO").size()), 1);
        QCOMPARE(int(lines("nm -D").filter("__stack_chk_fail").size()), 1);
    }

    void layout()
    {
        typedef VARIABLE V;
        QVERIFY((isLaidOut<V>(
            "iisiib", {offsetof(V, kind), offsetof(V, stationNo), offsetof(V, regName),
                       offsetof(V, startAddr), offsetof(V, count), offsetof(V, valueBuf)})));
        typedef FRAME_PRO F;
        QVERIFY((isLaidOut<F>(
            "biiiiiv", {offsetof(F, frame), offsetof(F, sendLen), offsetof(F, replyLen),
                        offsetof(F, dataStart), offsetof(F, readCount), offsetof(F, frameSpare),
                        offsetof(F, var)})));
        typedef KEY_ADDRESS K;
        QVERIFY((isLaidOut<K>(
            "siiissiiib", {offsetof(K, hostText), offsetof(K, hostValue1), offsetof(K, hostValue2),
                           offsetof(K, stationNo), offsetof(K, regName), offsetof(K, hostNote),
                           offsetof(K, startAddr), offsetof(K, bitMark), offsetof(K, count),
                           offsetof(K, valueBuf)})));
        typedef _RCP_VAR_PRO R;
        QVERIFY((isLaidOut<R>("iisiiii",
                              {offsetof(R, ownerKey), offsetof(R, stationNo), offsetof(R, regName),
                               offsetof(R, startAddr), offsetof(R, count), offsetof(R, bufIndex),
                               offsetof(R, hostSpare)})));
    }
};

QTEST_MAIN(LibraryTest)
#include "tst_library.moc"
