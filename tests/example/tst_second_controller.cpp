// The second controller's driver against libmodbus's RTU server, over a pseudo-terminal. Driver and
// server take turns in one thread: a request is on the line before the server looks at it. What
// never comes blocks, until CTest's time-out.
#include <modbus/modbus.h>
#include <pty.h>
#include <unistd.h>

#include <QtTest/QtTest>

#include "host_interface.h"

enum { Station = 17, Registers = 400, Coils = 700, Beyond = 1100 };

class SecondController : public QObject
{
    Q_OBJECT

    int line = -1;
    std::unique_ptr<modbus_t, void (*)(modbus_t *)> server{nullptr, modbus_free};
    modbus_mapping_t device = {};
    std::vector<quint16> memory = std::vector<quint16>(2 * Beyond);  ///< registers, then coils
    unsigned char shared[SharedBlockBytes] = {}, recipe[2 * Beyond] = {};
    QMutex mutex;
    QString told;
    QByteArray reply;  ///< the latest of the device

    void answer(const FRAME_PRO &request)
    {
        unsigned char query[MODBUS_RTU_MAX_ADU_LENGTH];
        QCOMPARE(int(write(line, request.frame, size_t(request.sendLen))), request.sendLen);
        const int length = modbus_receive(server.get(), query);
        const int sent = modbus_reply(server.get(), query, length, &device);
        reply = QByteArray(qMax(0, sent), '\0');
        for (int have = 0; have < sent;)
            have += int(read(line, reply.data() + have, size_t(sent - have)));
    }

    /** At most so many exchanges: function code and result of each, as "3:1 6:2". */
    QString exchange(int most)
    {
        QStringList exchanged;
        for (FRAME_PRO frame; exchanged.size() < most && intf_getSendFrame(&frame) == 1;) {
            const QByteArray before = reply;
            answer(frame);
            // A late reply to another request comes first, then whatever noise makes of the right
            // one. (Nothing tells a late reply to a read of as many.)
            if ((before.size() != reply.size() || before.size() == 8) &&
                intf_dealRcvFrame(before, 0) != 8)
                exchanged << "not noticed: " + before.toHex();
            for (int i = 0; i < reply.size(); ++i) {
                QByteArray damaged = reply;
                damaged[i] = char(damaged[i] ^ 1 << i % 8);
                if (intf_dealRcvFrame(damaged, 0) != 8 || intf_dealRcvFrame(reply.left(i), 0) != 8)
                    exchanged << "not noticed: " + damaged.toHex();
            }
            exchanged << QString("%1:%2").arg(frame.frame[1]).arg(intf_dealRcvFrame(reply, &told));
        }
        return exchanged.join(" ");
    }

    /** Turns all bits of a range over in the device; returns its new values, `width` bytes each. */
    QByteArray turnOver(const KEY_ADDRESS &range, int width)
    {
        QByteArray values;
        for (int n = range.startAddr; n < range.startAddr + range.count; ++n) {
            quint16 &word = device.tab_registers[range.regName == "HR_bit" ? n / 16 : n];
            int value = 0;
            if (range.regName == "CO")
                value = device.tab_bits[n] ^= 1;
            else if (range.regName == "HR_W")
                value = word ^= 0xFFFF;
            else
                value = (word ^= quint16(1 << n % 16)) >> n % 16 & 1;
            values += QByteArray(1, char(value)) + QByteArray(width - 1, char(value >> 8));
        }
        return values;
    }

private slots:
    void initTestCase()
    {
        char name[64];
        int terminal = -1;
        QCOMPARE(openpty(&line, &terminal, name, nullptr, nullptr), 0);
        server.reset(modbus_new_rtu(name, 115200, 'N', 8, 1));
        modbus_set_slave(server.get(), Station);
        QCOMPARE(modbus_connect(server.get()), 0);
        device.nb_registers = Registers;
        device.tab_registers = memory.data();
        device.nb_bits = Coils;
        device.tab_bits = reinterpret_cast<quint8 *>(memory.data() + Beyond);
        for (int i = 0; i < Beyond; ++i) {
            device.tab_registers[i] = quint16(i * 40503);
            device.tab_bits[i] = i * 40503 >> 9 & 1;
        }
    }

    void exchanges_data()
    {
        QTest::addColumn<QString>("exchanged");
        QTest::newRow("monitor HR_W 0 130") << "3:1 3:1";
        QTest::newRow("monitor HR_bit 2117 20") << "3:1";
        QTest::newRow("monitor CO 90 600") << "1:1 1:1";
        QTest::newRow("monitor HR_W 1000 1") << "3:2";
        QTest::newRow("write HR_W 399 1") << "6:1";
        QTest::newRow("write HR_W 10 260") << "16:1 16:1 16:1";
        QTest::newRow("write HR_bit 805 1") << "3:1 6:1";
        QTest::newRow("write HR_bit 969 13") << "3:1 16:1";
        QTest::newRow("write HR_bit 16005 3") << "3:2";
        QTest::newRow("write CO 8 1") << "5:1";
        QTest::newRow("write CO 30 13") << "15:1";
        QTest::newRow("write CO 1000 2") << "15:2";
        QTest::newRow("load HR_W 0 250") << "3:1 3:1 3:1";
        QTest::newRow("load HR_bit 4805 20") << "3:1";
        QTest::newRow("load CO 1 600") << "1:1 1:1";
        QTest::newRow("store HR_W 0 250") << "16:1 16:1 16:1";
        QTest::newRow("store HR_bit 4805 20") << "3:1 16:1";
        QTest::newRow("store CO 1 600") << "15:1 15:1";
    }

    void exchanges()
    {
        intf_initProperty(shared, nullptr, recipe, nullptr, "7#0#0#1000#127", &mutex);
        QFETCH(QString, exchanged);
        const QStringList asked = QString(QTest::currentDataTag()).split(' ');
        const bool reads = asked[0] == "monitor" || asked[0] == "load";
        const bool forRecipe = asked[0] == "load" || asked[0] == "store";
        const bool refused = exchanged.endsWith(":2");
        KEY_ADDRESS range;
        range.stationNo = Station;
        range.regName = asked[1];
        range.startAddr = asked[2].toInt();
        range.count = asked[3].toInt();

        const int width = forRecipe || range.regName == "HR_W" ? 2 : 1;
        QByteArray values = turnOver(range, width);
        const std::vector<quint16> written = memory;
        if (!reads)
            turnOver(range, width);  // the device holds the opposite of what it will be given
        const std::vector<quint16> wanted = reads || refused ? memory : written;
        unsigned char *const bytes = reinterpret_cast<unsigned char *>(values.data());
        if (forRecipe) {
            _RCP_VAR_PRO entry;
            entry.ownerKey = 7;
            entry.stationNo = Station;
            entry.regName = range.regName;
            entry.startAddr = range.startAddr;
            entry.count = range.count;
            QCOMPARE(intf_setRcpAddress(QVector<_RCP_VAR_PRO>() << entry), 1);
            std::memcpy(recipe, bytes, reads ? 0 : size_t(values.size()));
            shared[reads ? RecipeReadRequest : RecipeWriteRequest] = 1;
        } else if (reads) {
            intf_addrMerge(QList<KEY_ADDRESS>() << range);
        } else {
            intf_setData(Station, range.regName, range.startAddr, range.count, bytes, 0);
        }
        QCOMPARE(exchange(int(exchanged.count(':'))), exchanged);
        QVERIFY(memory == wanted);
        QCOMPARE(told.endsWith("(5) exception 2: illegal data address"), refused);

        if (!forRecipe)
            intf_getData(Station, range.regName, range.startAddr, range.count, recipe);
        QCOMPARE(QByteArray(reinterpret_cast<char *>(recipe), values.size()) == values, !refused);

        // Nothing is left, and a station number that the frame cannot name adds nothing.
        intf_addrMerge(QList<KEY_ADDRESS>());
        intf_setData(256 + Station, range.regName, range.startAddr, range.count, bytes, 0);
        QCOMPARE(exchange(1), QString());
    }
};

QTEST_APPLESS_MAIN(SecondController)
#include "tst_second_controller.moc"
