// The one object that holds all state of the driver, and what its rooms share besides.
#ifndef TOLVANE_PROTOCOL_H
#define TOLVANE_PROTOCOL_H

#include "state.h"

class Protocol
{
public:
    Protocol();

    Settings settings;
    Cache cache;
    Loop loop;
    Recipe recipe;

    QList<QString> regNameList;
    QVector<RegisterType> registerTypes;  ///< the facts of REG_LIST, by number
};

/** The one instance: built at load, destroyed at unload. */
extern __attribute__((visibility("hidden"))) Protocol driver;

/** The exchange under way where this is made; the host may end it from inside a callback. */
struct ExchangeUnderWay
{
    const quint32 number = driver.loop.exchangeNo;

    bool stands() const { return number == driver.loop.exchangeNo; }
};

/**
 * Calls the host back, if a callback is registered. The host's code may call any export before
 * this returns. The text is the host's own copy: what it does to it leaves the tables alone.
 */
void notifyHost(int first, int stationNo, QString text, int address);

#endif
