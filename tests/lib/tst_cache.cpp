// What only the inside shows: which data areas the cache makes, which mutex guards what, and the
// functions that are offered to another link.
#include <QtCore/QFile>
#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <vector>

#include "serviceForProtocol/data_area.h"
#include "tolvane_link/tolvane_link.h"

namespace {

unsigned char shared[SharedBlockBytes];
unsigned char buffer[64];
QMutex hostMutex;
const unsigned char ones[] = {1, 1, 1, 1, 1, 1, 1, 1};

/** A call on a thread of its own. */
class Call : public QThread
{
    std::function<void()> m_what;

    void run() { m_what(); }

public:
    explicit Call(const std::function<void()> &what) : m_what(what) { start(); }
    ~Call() { wait(); }
};

/** Whether the call waits while somebody else holds the mutex. */
bool waitsFor(QMutex &mutex, const std::function<void()> &what)
{
    mutex.lock();
    Call call(what);
    const bool waited = !call.wait(30);
    mutex.unlock();
    return waited && call.wait(30000);
}

void ask()
{
    FRAME_PRO frame;
    intf_getSendFrame(&frame);
}

void acknowledge()
{
    intf_dealRcvFrame("\x06w77\x04", nullptr);
}

void writeBit()
{
    intf_setData(1, "M_bit", 5, 1, ones, 0);
}

void registerRecipe(const char *type)
{
    _RCP_VAR_PRO entry;
    entry.regName = type;
    entry.count = 1;
    intf_setRcpAddress(QVector<_RCP_VAR_PRO>() << entry);
}

}  // namespace

class CacheTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        intf_initProperty(shared, buffer, buffer, nullptr, "1#2#3#4#5", &hostMutex);
        QCOMPARE(driver.settings.propItem0 + 10 * driver.settings.propItem1 +
                     100 * driver.settings.propItem2 + 1000 * driver.settings.propItem3 +
                     10000 * driver.settings.propItem4,
                 54321);
        QCOMPARE(driver.settings.hostContext, static_cast<void *>(buffer));
    }

    void init()
    {
        memset(shared, 0, sizeof shared);
        intf_initProperty(shared, nullptr, buffer, nullptr, "0#0#0#3#64", &hostMutex);
    }

    void areas()
    {
        unsigned char out[64];
        intf_getData(1, "M_bit", 15, 2, out);
        intf_setData(1, "M_W", 0, 2, ones, 0);
        intf_setData(2, "M_W", 0, 1, ones, 0);
        intf_setData(1, "TX", 5, 3, ones, 0);
        intf_setData(1, "Q_bit", 5, 1, ones, 0);
        intf_getData(1, "D_W", 5, 0, out);
        QCOMPARE(int(driver.cache.dataAreaList.size()), 6);
        QCOMPARE(getIndexOfDataArea(1, "M", 1), 1);
        QCOMPARE(getIndexOfDataArea(1, "m", 1), 6);
        init();
        QVERIFY(driver.cache.dataAreaList.isEmpty());
    }

    void requestBytesAreGuarded()
    {
        registerRecipe("D_W");
        QVERIFY(waitsFor(hostMutex, ask));
        shared[RecipeWriteRequest] = 1;
        ask();
        QVERIFY(waitsFor(hostMutex, acknowledge));
        QCOMPARE(int(shared[RecipeWriteRequest]), 0);
    }

    void writeQueueIsGuarded()
    {
        writeBit();
        ask();
        QVERIFY(waitsFor(driver.loop.mutex, writeBit));
        QCOMPARE(int(driver.loop.writeList.size()), 2);
        QVERIFY(waitsFor(driver.loop.mutex, acknowledge));
        QCOMPARE(int(driver.loop.writeList.size()), 1);
    }

    void handShake()
    {
        driver.loop.handShakeRequest = 1;
        FRAME_PRO frame;
        frame.sendLen = -1;
        QCOMPARE(intf_getSendFrame(&frame), 1);
        QVERIFY(!frame.sendLen && !frame.replyLen && !frame.dataStart && !frame.readCount);
        QCOMPARE(driver.loop.itemsInFrame, 1);
        driver.loop.handShakeRequest = 0;
        QString text("was there");
        for (const int result : {8, 8, 2, 0}) {
            QCOMPARE(intf_dealRcvFrame("\x06x78\x04", &text), result);
            QCOMPARE(text, QString());
        }
    }

    void tablesThatNoneCanServe()
    {
        // The load of a room with such a row, in a process that it ends.
        int ends[2];
        QCOMPARE(pipe(ends), 0);
        if (fork() == 0) {
            signal(SIGABRT, SIG_DFL);
            dup2(ends[1], STDOUT_FILENO);
            dup2(ends[1], STDERR_FILENO);
            const_cast<AddressRange &>(ADDRESS_RANGE_PRO[9]).valueBits = "32";
            Protocol another;
            _exit(0);
        }
        close(ends[1]);
        QFile said;
        QVERIFY(said.open(ends[0], QIODevice::ReadOnly));
        QVERIFY(said.readAll().contains("register type N_W has no storage unit"));
        close(ends[0]);
        int status = 0;
        wait(&status);
        QVERIFY(WIFSIGNALED(status));
    }

    void forAnotherLink()
    {
        const std::vector<quint8> bytes(300, 0xFF);
        QCOMPARE(computate_check(bytes.data(), 300), quint16(76500 - 65536));
        FRAME_PRO frame;
        frame.dataStart = 2;
        driver.loop.frameList << frame;
        const int expected[][3] = {{0, 3, 2}, {1, 3, 6}, {5, 3, 14}, {1, 1, 6}, {1, 0, 2}};
        for (const int(&each)[3] : expected) {
            driver.loop.itemsInFrame = each[1];
            QCOMPARE(allMix_GetDataStartPosition("", QList<VARIABLE>(), each[0]), each[2]);
        }
    }
};

QTEST_MAIN(CacheTest)
#include "tst_cache.moc"
