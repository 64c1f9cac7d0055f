// Who the driver is, and what a Modbus device's memory looks like: one row a register type.
#include "wire.h"

#define T(text) QString(QLatin1String(text))

const QString PROCOTOL_NAME BUILT_BEFORE_DRIVER = T("modbus_rtu");
const QString PROCOTOL_VERSION BUILT_BEFORE_DRIVER = T("1.0.0.0");
const QString PROCOTOL_DEFALT_COM_PAR BUILT_BEFORE_DRIVER = T("19200,8,EVEN,1");
const QString PROCOTOL_DEFALT_IP_PAR BUILT_BEFORE_DRIVER = T("192.168.1.100,502");
const QString PROCOTOL_PAR_HMI_SET_MODE BUILT_BEFORE_DRIVER = T("0_0");

// Addresses count from 0, as they travel. `reads` is the function code that reads the type.
// clang-format off
#define REGISTER_TYPES(ROW) \
    /*  name      reads  addrFormat  minAddr  maxAddr     valueBits  access  unitBits */ \
    ROW("HR_W",   "3",   "DDDDD",    "0",     "65535",    "16",      "RW",   "16") \
    ROW("HR_bit", "3",   "DDDDD.DD", "0.0",   "65535.15", "1",       "RW",   "16") \
    ROW("CO",     "1",   "DDDDD",    "0",     "65535",    "1",       "RW",   "1")
// clang-format on

#define NAME(name, reads, format, lowest, highest, value, access, unit) T(name),
#define RANGE(name, reads, format, lowest, highest, value, access, unit) \
    {T(format), T(lowest), T(highest), T(value), T(access), T(unit)},
#define READS(name, reads, format, lowest, highest, value, access, unit) T(reads),

const QString REG_LIST[] BUILT_BEFORE_DRIVER = {REGISTER_TYPES(NAME)};
const int RegisterTypeCount = sizeof REG_LIST / sizeof REG_LIST[0];
const AddressRange ADDRESS_RANGE_PRO[] BUILT_BEFORE_DRIVER = {
    REGISTER_TYPES(RANGE) RANGE(, , "DDDDD", "0", "65535", "1", "RW", "1")};
const QString ADDRESS_RW_COMMAND[] BUILT_BEFORE_DRIVER = {REGISTER_TYPES(READS)};
