// The built library as a panel meets it: its symbols and dependencies, loading and unloading,
// and the layout of the records that cross the border.
#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtTest/QtTest>

#include <cstddef>
#include <cstdio>
#include <type_traits>

#include "host_interface.h"

// By way of void *, which is what some generations of Qt give.
#define TOLVANE_RESOLVE(name) \
    reinterpret_cast<decltype(&name)>(reinterpret_cast<void *>(library.resolve(#name)))

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

bool isMapped()
{
    QFile maps("/proc/self/maps");
    return maps.open(QIODevice::ReadOnly) && maps.readAll().indexOf("libtolvane_link") >= 0;
}

int callBacks = 0;

void countCallBack(int, int, const QString &, int)
{
    ++callBacks;
}

}  // namespace

class LibraryTest : public QObject
{
    Q_OBJECT

private slots:
    void exportsNothingElse()
    {
        QStringList symbols;
        for (const QString &line : lines("nm -D --defined-only"))
            symbols << line.section(' ', 1);
        symbols.sort();
        QCOMPARE(symbols.join(" "),
                 QString("T intf_SetDriverPropertyPage T intf_addConditionRead T intf_addrMerge "
                         "T intf_checkAddr T intf_checkAddrValidity T intf_dealRcvFrame "
                         "T intf_getData T intf_getDriverParameter T intf_getDriverPropertyPage "
                         "T intf_getProtocolType T intf_getRegDiscription T intf_getRegListByType "
                         "T intf_getSendFrame T intf_getVersion T intf_initProperty "
                         "T intf_multiCopy T intf_setAddrValueChangeCallBack T intf_setData "
                         "T intf_setRcpAddress"));
    }

    void needsQtCoreOnly()
    {
        QStringList qt;
        QStringList own;
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

    void leavesNothingBehind()
    {
        QMutex mutex;
        int callBacksBefore = 0;
        for (int time = 0; time < 3; ++time) {
            QVERIFY(!isMapped());
            QLibrary library(TOLVANE_LIBRARY);
            QVERIFY2(library.load(), qPrintable(library.errorString()));
            QVERIFY(isMapped());
            const auto setCallBack = TOLVANE_RESOLVE(intf_setAddrValueChangeCallBack);
            const auto initProperty = TOLVANE_RESOLVE(intf_initProperty);
            const auto addrMerge = TOLVANE_RESOLVE(intf_addrMerge);
            const auto setData = TOLVANE_RESOLVE(intf_setData);
            const auto getData = TOLVANE_RESOLVE(intf_getData);
            const auto getSendFrame = TOLVANE_RESOLVE(intf_getSendFrame);
            QVERIFY(setCallBack && initProperty && addrMerge && setData && getData && getSendFrame);

            KEY_ADDRESS key;
            key.regName = "D_W";
            key.count = 1;
            unsigned char value[] = {0xEE, 0xEE};
            FRAME_PRO frame;
            getData(0, "D_W", 0, 1, value);
            QCOMPARE(value[0] + value[1], 0);  // nothing of the time before
            QByteArray shared(SharedBlockBytes, '\0');
            auto *block = reinterpret_cast<unsigned char *>(shared.data());
            QCOMPARE(initProperty(block, nullptr, nullptr, nullptr, "7#0#0#3#64", &mutex), 1);
            setCallBack(countCallBack);
            QCOMPARE(addrMerge(QList<KEY_ADDRESS>() << key), 1);
            value[0] = 1;
            setData(0, "D_W", 0, 1, value, 0);
            QCOMPARE(getSendFrame(&frame), 1);
            QVERIFY(library.unload());
            QCOMPARE(callBacks, ++callBacksBefore);
        }
        QVERIFY(!isMapped());
    }

    // A QString is one pointer in Qt 4 and 5, three in Qt 6. On 64-bit machines it starts at a
    // multiple of 8, which leaves a gap of 4 bytes before it in FRAME_PRO and KEY_ADDRESS.
    void layout()
    {
        typedef QVector<size_t> Offsets;
        const bool wide = sizeof(void *) == 8;
        const size_t s = sizeof(QString);
        QCOMPARE(
            Offsets({offsetof(VARIABLE, kind), offsetof(VARIABLE, stationNo),
                     offsetof(VARIABLE, regName), offsetof(VARIABLE, startAddr),
                     offsetof(VARIABLE, count), offsetof(VARIABLE, valueBuf), sizeof(VARIABLE)}),
            Offsets({0, 4, 8, 8 + s, 12 + s, 16 + s, 1040 + s}));
        QCOMPARE(Offsets({offsetof(FRAME_PRO, frame), offsetof(FRAME_PRO, sendLen),
                          offsetof(FRAME_PRO, replyLen), offsetof(FRAME_PRO, dataStart),
                          offsetof(FRAME_PRO, readCount), offsetof(FRAME_PRO, frameSpare),
                          offsetof(FRAME_PRO, var), sizeof(FRAME_PRO)}),
                 wide ? Offsets({0, 1024, 1028, 1032, 1036, 1040, 1048, 2088 + s})
                      : Offsets({0, 1024, 1028, 1032, 1036, 1040, 1044, 2084 + s}));
        QCOMPARE(Offsets({offsetof(KEY_ADDRESS, hostText), offsetof(KEY_ADDRESS, hostValue1),
                          offsetof(KEY_ADDRESS, hostValue2), offsetof(KEY_ADDRESS, stationNo),
                          offsetof(KEY_ADDRESS, regName), offsetof(KEY_ADDRESS, hostNote),
                          offsetof(KEY_ADDRESS, startAddr), offsetof(KEY_ADDRESS, bitMark),
                          offsetof(KEY_ADDRESS, count), offsetof(KEY_ADDRESS, valueBuf),
                          sizeof(KEY_ADDRESS)}),
                 wide ? Offsets({0, s, s + 4, s + 8, s + 16, 2 * s + 16, 3 * s + 16, 3 * s + 20,
                                 3 * s + 24, 3 * s + 28, 3 * s + 1056})
                      : Offsets({0, s, s + 4, s + 8, s + 12, 2 * s + 12, 3 * s + 12, 3 * s + 16,
                                 3 * s + 20, 3 * s + 24, 3 * s + 1048}));
        QCOMPARE(Offsets({offsetof(_RCP_VAR_PRO, ownerKey), offsetof(_RCP_VAR_PRO, stationNo),
                          offsetof(_RCP_VAR_PRO, regName), offsetof(_RCP_VAR_PRO, startAddr),
                          offsetof(_RCP_VAR_PRO, count), offsetof(_RCP_VAR_PRO, bufIndex),
                          offsetof(_RCP_VAR_PRO, hostSpare), sizeof(_RCP_VAR_PRO)}),
                 Offsets({0, 4, 8, 8 + s, 12 + s, 16 + s, 20 + s, 24 + s}));
        QVERIFY(std::is_standard_layout<VARIABLE>::value);
        QVERIFY(std::is_standard_layout<FRAME_PRO>::value);
        QVERIFY(std::is_standard_layout<KEY_ADDRESS>::value);
        QVERIFY(std::is_standard_layout<_RCP_VAR_PRO>::value);
    }
};

QTEST_MAIN(LibraryTest)
#include "tst_library.moc"
