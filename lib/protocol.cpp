// Identity, register tables and the state object. They stand in one file, in this order: the
// constructor of `driver` reads the tables.
#include "protocol.h"

const QString PROCOTOL_NAME = QLatin1String("tolvane_link");
const QString PROCOTOL_VERSION = QLatin1String("2.0.0.0");
const QString PROCOTOL_DEFALT_COM_PAR = QLatin1String("115200,8,NONE,1");
const QString PROCOTOL_DEFALT_IP_PAR = QLatin1String("192.168.1.100,8000");
const QString PROCOTOL_PAR_HMI_SET_MODE = QLatin1String("0_0");

#define T(text) QString(QLatin1String(text))

// clang-format off
const QString REG_LIST[RegisterTypeCount] = {
    T("P_W"), T("M_W"), T("L_W"), T("K_W"), T("F_W"), T("D_W"), T("S_W"), T("T_W"), T("C_W"),
    T("N_W"), T("Z_W"), T("P_bit"), T("M_bit"), T("L_bit"), T("K_bit"), T("F_bit"), T("TX"), T("CX"),
};

const AddressRange ADDRESS_RANGE_PRO[RegisterTypeCount + 1] = {
    // addrFormat     minAddr   maxAddr        valueBits access   unitBits
    {T("DDDD"),     T("0"),   T("2047"),     T("16"), T("RW"), T("16")},  // P_W
    {T("DDDD"),     T("0"),   T("2047"),     T("16"), T("RW"), T("16")},  // M_W
    {T("DDDDD"),    T("0"),   T("11263"),    T("16"), T("RW"), T("16")},  // L_W
    {T("DDDD"),     T("0"),   T("2559"),     T("16"), T("RW"), T("16")},  // K_W
    {T("DDDD"),     T("0"),   T("2047"),     T("16"), T("RW"), T("16")},  // F_W
    {T("DDDDD"),    T("0"),   T("32767"),    T("16"), T("RW"), T("16")},  // D_W
    {T("DDD"),      T("0"),   T("127"),      T("16"), T("RW"), T("16")},  // S_W
    {T("DDDD"),     T("0"),   T("2047"),     T("16"), T("RW"), T("16")},  // T_W
    {T("DDDD"),     T("0"),   T("2047"),     T("16"), T("RW"), T("16")},  // C_W
    {T("DDDDD"),    T("0"),   T("21503"),    T("16"), T("RW"), T("16")},  // N_W
    {T("DDDD"),     T("0"),   T("127"),      T("16"), T("RW"), T("16")},  // Z_W
    {T("DDDD.DD"),  T("0.0"), T("2047.15"),  T("1"),  T("RW"), T("16")},  // P_bit
    {T("DDDD.DD"),  T("0.0"), T("2047.15"),  T("1"),  T("RW"), T("16")},  // M_bit
    {T("DDDDD.DD"), T("0.0"), T("11263.15"), T("1"),  T("RW"), T("16")},  // L_bit
    {T("DDDD.DD"),  T("0.0"), T("4095.15"),  T("1"),  T("RW"), T("16")},  // K_bit
    {T("DDDD.DD"),  T("0.0"), T("2047.15"),  T("1"),  T("RW"), T("16")},  // F_bit
    {T("DDDD"),     T("0"),   T("2047"),     T("1"),  T("RW"), T("1")},   // TX
    {T("DDDD"),     T("0"),   T("2047"),     T("1"),  T("RW"), T("1")},   // CX
    {T("DDDD"),     T("0"),   T("2047"),     T("1"),  T("RW"), T("1")},   // unknown names
};

// The device letters of the link.
const QString ADDRESS_RW_COMMAND[RegisterTypeCount] = {
    T("h"), T("i"), T("j"), T("k"), T("n"), T("a"), T("o"), T("b"), T("c"),
    T("p"), T("s"), T("h"), T("i"), T("j"), T("k"), T("n"), T("l"), T("m"),
};
// clang-format on

#undef T

Protocol driver;

namespace {

UnitKind unitKindOf(const QString &name, const AddressRange &row)
{
    const QLatin1String one("1");
    const QLatin1String sixteen("16");
    const bool bitName = name.contains(QLatin1String("_bit"));
    if (row.valueBits == sixteen && row.unitBits == sixteen)
        return WordUnit;
    if (row.valueBits == one && bitName && row.unitBits == sixteen)
        return WordBitUnit;
    if (row.valueBits == one && !bitName)
        return BitUnit;
    return NoUnit;
}

}  // namespace

Protocol::Protocol()
    : valueChangeCallBack(0),
      propItem0(0),
      propItem1(0),
      propItem2(0),
      propItem3(0),
      propItem4(0),
      hostShared(0),
      hostContext(0),
      rcpBuffer(0),
      hostMutex(0),
      sendState(Idle),
      runCount(0),
      handShakeRequest(0),
      retryCount(0),
      mergeBits(0),
      mergeWords(0),
      lastFrameFailed(0),
      frameIndex(0),
      rcpIndex(0),
      itemsInFrame(0),
      registerTypes(RegisterTypeCount),
      readIndex(0),
      itemIsQueueHead(false),
      exchangeNo(0),
      cacheNo(0),
      rcpRegistration(0),
      rcpTransferOf(0),
      rcpRefused(false)
{
    areaIndex.covered = 0;
    for (int number = 0; number < RegisterTypeCount; ++number) {
        const QString &name = REG_LIST[number];
        regNameList.append(name);
        RegisterType &type = registerTypes[number];
        type.number = number;
        type.unitKind = unitKindOf(name, ADDRESS_RANGE_PRO[number]);
        type.areaName = name.left(name.indexOf(QLatin1Char('_')));
        type.wordType = number;
        type.bitType = -1;
        // Word types stand before the bit types over the same words.
        for (int other = 0; type.unitKind == WordBitUnit && other < number; ++other) {
            if (registerTypes.at(other).areaName == type.areaName) {
                type.areaName = registerTypes.at(other).areaName;
                type.wordType = other;
                registerTypes[other].bitType = number;
            }
        }
    }
}

int getIndexFromRegName(const QString &name)
{
    for (int number = 0; number < RegisterTypeCount; ++number) {
        if (sameText(name, REG_LIST[number]))
            return number;
    }
    return -1;
}

RegisterType registerType(const QString &name)
{
    const int number = getIndexFromRegName(name);
    if (number >= 0)
        return driver.registerTypes.at(number);
    // A text of the driver's own: the host's may lie over memory that goes away.
    RegisterType unknown = {FallbackRow, unitKindOf(name, ADDRESS_RANGE_PRO[FallbackRow]),
                            QString(name.constData(), int(name.size())), FallbackRow, -1};
    return unknown;
}

void notifyHost(int first, int stationNo, QString text, int address)
{
    if (driver.valueChangeCallBack)
        driver.valueChangeCallBack(first, stationNo, text, address);
}
