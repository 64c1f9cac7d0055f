// Who the driver is, and what the controller's memory looks like: one row a register type.
#include "../protocol.h"

#define T(text) QString(QLatin1String(text))

const QString PROCOTOL_NAME BUILT_BEFORE_DRIVER = T("tolvane_link");
const QString PROCOTOL_VERSION BUILT_BEFORE_DRIVER = T("2.0.0.0");
const QString PROCOTOL_DEFALT_COM_PAR BUILT_BEFORE_DRIVER = T("115200,8,NONE,1");
const QString PROCOTOL_DEFALT_IP_PAR BUILT_BEFORE_DRIVER = T("192.168.1.100,8000");
const QString PROCOTOL_PAR_HMI_SET_MODE BUILT_BEFORE_DRIVER = T("0_0");

// clang-format off
#define REGISTER_TYPES(ROW) \
    /*  name     letter  addrFormat  minAddr  maxAddr   valueBits  access  unitBits */ \
    ROW("P_W",    "h",  "DDDD",      "0",    "2047",      "16",    "RW",    "16") \
    ROW("M_W",    "i",  "DDDD",      "0",    "2047",      "16",    "RW",    "16") \
    ROW("L_W",    "j",  "DDDDD",     "0",    "11263",     "16",    "RW",    "16") \
    ROW("K_W",    "k",  "DDDD",      "0",    "2559",      "16",    "RW",    "16") \
    ROW("F_W",    "n",  "DDDD",      "0",    "2047",      "16",    "RW",    "16") \
    ROW("D_W",    "a",  "DDDDD",     "0",    "32767",     "16",    "RW",    "16") \
    ROW("S_W",    "o",  "DDD",       "0",    "127",       "16",    "RW",    "16") \
    ROW("T_W",    "b",  "DDDD",      "0",    "2047",      "16",    "RW",    "16") \
    ROW("C_W",    "c",  "DDDD",      "0",    "2047",      "16",    "RW",    "16") \
    ROW("N_W",    "p",  "DDDDD",     "0",    "21503",     "16",    "RW",    "16") \
    ROW("Z_W",    "s",  "DDDD",      "0",    "127",       "16",    "RW",    "16") \
    ROW("P_bit",  "h",  "DDDD.DD",   "0.0",  "2047.15",   "1",     "RW",    "16") \
    ROW("M_bit",  "i",  "DDDD.DD",   "0.0",  "2047.15",   "1",     "RW",    "16") \
    ROW("L_bit",  "j",  "DDDDD.DD",  "0.0",  "11263.15",  "1",     "RW",    "16") \
    ROW("K_bit",  "k",  "DDDD.DD",   "0.0",  "4095.15",   "1",     "RW",    "16") \
    ROW("F_bit",  "n",  "DDDD.DD",   "0.0",  "2047.15",   "1",     "RW",    "16") \
    ROW("TX",     "l",  "DDDD",      "0",    "2047",      "1",     "RW",    "1")  \
    ROW("CX",     "m",  "DDDD",      "0",    "2047",      "1",     "RW",    "1")
// clang-format on

#define NAME(name, letter, format, lowest, highest, value, access, unit) T(name),
#define RANGE(name, letter, format, lowest, highest, value, access, unit) \
    {T(format), T(lowest), T(highest), T(value), T(access), T(unit)},
#define LETTER(name, letter, format, lowest, highest, value, access, unit) T(letter),

const QString REG_LIST[] BUILT_BEFORE_DRIVER = {REGISTER_TYPES(NAME)};
const int RegisterTypeCount = sizeof REG_LIST / sizeof REG_LIST[0];
const AddressRange ADDRESS_RANGE_PRO[] BUILT_BEFORE_DRIVER = {
    REGISTER_TYPES(RANGE) RANGE(, , "DDDD", "0", "2047", "1", "RW", "1")};
const QString ADDRESS_RW_COMMAND[] BUILT_BEFORE_DRIVER = {REGISTER_TYPES(LETTER)};
