// Turning the data of a good read reply into values.
#include "reply_decode.h"

#include "../tolvane_link/tolvane_link.h"
#include "recipe.h"
#include "value_store.h"

int dealReadFrameReturnSaveData(const QByteArray &reply)
{
    const FRAME_PRO &request = driver.frameList.at(0);
    if (driver.sendState == QueuedWrite || driver.sendState == RecipeWrite)
        mergeBitsIntoWrite(reply);
    else
        analyzeFrameOfVal(reply, request.readCount, request.dataStart, request.var);
    return 0;
}

void analyzeFrameOfVal(const QByteArray &reply, int readCount, int dataStart, const VARIABLE &var)
{
    ReplyWords words;
    readReplyWords(reply, dataStart, readCount, words);
    // Nothing of `var` is used behind the first report: the host may end the exchange from there.
    const int firstBit = bitInWord(var.startAddr);
    const quint32 exchange = driver.exchangeNo;
    forEachUnit(var.stationNo, registerType(var.regName), var.startAddr, readCount,
                [&](const Unit &unit) {
                    if (unit.kind == BitUnit)
                        storeReadBit(unit, words.bit(firstBit + unit.i));
                    else
                        storeReadWord(unit, words.word[unit.i]);
                });
    if (exchange == driver.exchangeNo && driver.sendState == RecipeRead &&
        driver.rcpTransferOf == driver.rcpRegistration)
        copyRecipeReply(words);
}
