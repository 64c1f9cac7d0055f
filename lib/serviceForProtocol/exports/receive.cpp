// Export: what the host received for the frame in flight, and finishing its item.
#include <QtCore/QMutexLocker>

#include <cstdio>

#include "../../tolvane_link/tolvane_link.h"
#include "../address.h"
#include "../reply_decode.h"
#include "../request_queue.h"
#include "../value_store.h"

namespace {

enum ReceiveResult { NoFrameInFlight = 0, Good = 1, GivenUp = 2, SendAgain = 8 };

/** The request in flight as "1#D_W100(10)(0)": station, type, address, count, reply length. */
QString getErrorInfo(const QByteArray &reply)
{
    const VARIABLE &item = driver.frameList.at(0).var;
    const int number = getIndexFromRegName(item.regName);
    if (number < 0)
        return QString();
    // Written on every exchange, hence one buffer rather than chained texts.
    char address[32];
    if (driver.registerTypes.at(number).unitKind == WordBitUnit)
        std::snprintf(address, sizeof address, "%s",
                      addr_int2str(item.startAddr, item.regName).toLatin1().constData());
    else
        printAddressNumber(address, item.startAddr, ADDRESS_RANGE_PRO[number].addrFormat);
    char name[16] = "";
    for (int i = 0; i < item.regName.size() && i < int(sizeof name) - 1; ++i)
        name[i] = item.regName.at(i).toLatin1();
    char text[96];
    const int length = std::snprintf(text, sizeof text, "%d#%s%s(%d)(%d)", item.stationNo, name,
                                     address, item.count, int(reply.size()));
    return QString::fromLatin1(text, length);
}

/** Settles the queued write that the frame in flight serves, if it does; may call the host. */
void settleWrite(int result)
{
    // A repeated write is settled already; what waits for the same range now is another one.
    if (driver.sendState != QueuedWrite || !driver.itemIsQueueHead)
        return;
    const VARIABLE &item = driver.frameList.at(0).var;
    const QString regName = item.regName;
    _write_FailOrSuc(item.stationNo, regName, item.startAddr, item.count, result);
}

void removeWriteHead()
{
    QMutexLocker locker(&driver.mutex);
    driver.writeList.removeFirst();
}

/**
 * Takes the read, or after a failure the whole batch, off the queue and announces the end of the
 * latest one. In this order: what the host queues from inside the call shall stay.
 */
void finishConditionRead()
{
    const bool failed = driver.lastFrameFailed == 1;
    const bool batchDone = isSameRange(driver.condReadList.first(), driver.lastCondVar);
    if (failed)
        driver.condReadList.clear();
    else
        driver.condReadList.removeFirst();
    if (batchDone)
        notifyHost(-1, -1, QLatin1String("-1"), failed ? -1 : 0);
}

/** Moves the transfer on to its next block, or ends it and takes the host's request back. */
void finishRecipeBlock(int requestByte)
{
    if (!driver.lastFrameFailed) {
        const bool replaced = driver.rcpTransferOf != driver.rcpRegistration;
        if (replaced || ++driver.rcpIndex < driver.rcpBlocks.size())
            return;
    }
    driver.rcpIndex = 0;
    QMutexLocker locker(driver.hostMutex);
    driver.hostShared[requestByte] = 0;
}

void dealListWhenFinish()
{
    switch (driver.sendState) {
        case QueuedWrite:
            if (driver.itemIsQueueHead)
                removeWriteHead();
            break;
        case ConditionRead:
            if (driver.itemIsQueueHead)
                finishConditionRead();
            break;
        case CyclicRead:
            if (driver.readList.size() >= 2)
                driver.readIndex = (driver.readIndex + 1) % int(driver.readList.size());
            break;
        case RecipeWrite:
            finishRecipeBlock(RecipeWriteRequest);
            break;
        case RecipeRead:
            finishRecipeBlock(RecipeReadRequest);
            break;
        default:
            break;
    }
}

/** A bad reply: the same frame again, or the end of the item with all its frames. */
int dealBadReply(quint32 exchange)
{
    if (++driver.retryCount < driver.propItem3)
        return SendAgain;
    driver.lastFrameFailed = 1;
    settleWrite(0);
    if (exchange != driver.exchangeNo)
        return GivenUp;
    driver.frameList.clear();
    ++driver.exchangeNo;
    driver.retryCount = 0;
    dealListWhenFinish();
    return GivenUp;
}

}  // namespace

int intf_dealRcvFrame(QByteArray reply, QString *errorText)
{
    if (errorText)
        *errorText = QString();
    if (driver.frameList.isEmpty())
        return NoFrameInFlight;
    if (errorText)
        *errorText = getErrorInfo(reply);

    const quint32 exchange = driver.exchangeNo;
    switch (check_rcv_data(reinterpret_cast<const unsigned char *>(reply.constData()),
                           int(reply.size()))) {
        case GoodReadReply:
            driver.lastFrameFailed = 0;
            dealReadFrameReturnSaveData(reply);
            break;
        case GoodAcknowledgement:
            driver.lastFrameFailed = 0;
            settleWrite(1);
            break;
        default:
            return dealBadReply(exchange);
    }
    // The host may have started over, or finished this frame, from inside a report.
    if (exchange != driver.exchangeNo)
        return Good;
    driver.frameList.removeFirst();
    ++driver.exchangeNo;
    driver.retryCount = 0;
    if (driver.frameList.isEmpty())
        dealListWhenFinish();
    return Good;
}
