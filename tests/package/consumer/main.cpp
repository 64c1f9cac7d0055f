// A project outside the tree: one exchange through the installed library.
#include <host_interface.h>

int main()
{
    unsigned char shared[SharedBlockBytes] = {0};
    QMutex mutex;
    intf_initProperty(shared, nullptr, nullptr, nullptr, "1#0#0#3#64", &mutex);
    KEY_ADDRESS key;
    key.regName = QLatin1String("D_W");
    key.startAddr = 100;
    key.count = 2;
    QList<KEY_ADDRESS> keys;
    keys.append(key);
    FRAME_PRO frame;
    QString text;
    unsigned char values[4] = {0, 0, 0, 0};
    const bool exchanged = intf_addrMerge(keys) == 1 && intf_getSendFrame(&frame) == 1 &&
                           intf_dealRcvFrame("\x06r3412CDAB46\x04", &text) == 1;
    intf_getData(0, QLatin1String("D_W"), 100, 2, values);
    const bool read =
        values[0] == 0x34 && values[1] == 0x12 && values[2] == 0xCD && values[3] == 0xAB;
    return exchanged && read ? 0 : 1;
}
