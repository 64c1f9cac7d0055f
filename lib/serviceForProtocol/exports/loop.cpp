// Exports: the communication loop. One exchange, in the order in which it happens: the next item is
// taken and asked for; its reply is judged and decoded; the item is finished.
//
// The frame in flight stays at the head of driver.loop.frameList until its reply is good or it is
// given up; a queued item stays at the head of its queue just as long.
#include "loop.h"

#include <QtCore/QMutexLocker>

#include "../../tolvane_link/tolvane_link.h"
#include "../address.h"
#include "../recipe.h"
#include "../request_queue.h"
#include "../value_store.h"

namespace {

enum {
    CyclicReadKind = 4,
    WritesInARow = 10,  ///< then a cyclic read has its turn
    ConditionReadsInARow = 3
};

enum ReceiveResult { NoFrameInFlight = 0, Good = 1, GivenUp = 2, SendAgain = 8 };

void takeNextItem();
void takeRecipe(SendState transfer);
void takeQueueHead(const QList<VARIABLE> &queue, SendState state);
void takeCyclicRead();
void buildFrames();
int dealReadFrameReturnSaveData(const QByteArray &reply, const RegisterType &type);
void analyzeFrameOfVal(const QByteArray &reply, const FRAME_PRO &request, const RegisterType &type);
void settleWrite(const RegisterType &type, int result);
void finishFrame();
int giveUp(const RegisterType &type);
void dealListWhenFinish();
void finishWrite();
void finishConditionRead();
void finishCyclicRead();

}  // namespace

// ---- Asking ---------------------------------------------------------------------------------

int intf_getSendFrame(FRAME_PRO *frame)
{
    if (!frame)
        return 0;
    if (driver.loop.frameList.isEmpty()) {
        takeNextItem();
        buildFrames();
    }
    if (driver.loop.frameList.isEmpty())
        return 0;
    *frame = driver.loop.frameList.at(0);
    return 1;
}

namespace {

void takeNextItem()
{
    const SendState transfer = nextTransfer();
    if (driver.loop.handShakeRequest) {
        driver.loop.sendState = HandShake;
    } else if (transfer != Idle) {
        takeRecipe(transfer);
    } else if (!driver.loop.writeList.isEmpty() && driver.loop.runCount < WritesInARow) {
        takeQueueHead(driver.loop.writeList, QueuedWrite);
    } else if (!driver.loop.condReadList.isEmpty() && driver.loop.runCount < ConditionReadsInARow) {
        takeQueueHead(driver.loop.condReadList, ConditionRead);
    } else if (!driver.loop.readList.isEmpty()) {
        takeCyclicRead();
    } else {
        driver.loop.runCount = 0;
        driver.loop.sendState = Idle;
    }
}

/**
 * The next block of the transfer. When there is none, curVar and sendState stay those of the item
 * before, so that it is sent once more; nothing is sent when there was none (Idle).
 */
void takeRecipe(SendState transfer)
{
    driver.loop.itemIsQueueHead = false;  // also of a repeated one: its queue has gone on
    if (takeRecipeBlock(transfer, driver.loop.curVar))
        driver.loop.sendState = transfer;
}

void takeQueueHead(const QList<VARIABLE> &queue, SendState state)
{
    driver.loop.curVar = queue.first();
    driver.loop.itemIsQueueHead = true;
    driver.loop.sendState = state;
    ++driver.loop.runCount;
}

void takeCyclicRead()
{
    driver.loop.curVar.kind = CyclicReadKind;
    setRange(driver.loop.curVar, driver.loop.readList.at(driver.loop.readIndex));
    std::memset(driver.loop.curVar.valueBuf, 0, sizeof driver.loop.curVar.valueBuf);
    driver.loop.sendState = CyclicRead;
    driver.loop.runCount = 0;
}

void buildFrames()
{
    driver.loop.itemsInFrame = 1;
    switch (driver.loop.sendState) {
        case HandShake:
            return handShakeFrame();
        case QueuedWrite:
        case RecipeWrite:
            return getWriteFrame(driver.loop.curVar);
        case ConditionRead:
        case CyclicRead:
        case RecipeRead:
            return getReadFrame(driver.loop.curVar);
    }
}

}  // namespace

// ---- What came back -------------------------------------------------------------------------

int intf_dealRcvFrame(QByteArray reply, QString *errorText)
{
    QString unasked;
    QString &text = errorText ? *errorText : unasked;
    text = QLatin1String("");
    if (driver.loop.frameList.isEmpty())
        return NoFrameInFlight;
    const VARIABLE &item = driver.loop.frameList.at(0).var;
    const RegisterType type = registerType(item.regName);
    text = getErrorInfo(type, item, int(reply.size()));
    // From any report the host may start over or even finish this frame itself.
    const ExchangeUnderWay exchange;
    switch (check_rcv_data(reinterpret_cast<const unsigned char *>(reply.constData()),
                           int(reply.size()))) {
        case GoodReadReply:
            driver.loop.lastFrameFailed = 0;
            dealReadFrameReturnSaveData(reply, type);
            break;
        case GoodAcknowledgement:
            driver.loop.lastFrameFailed = 0;
            settleWrite(type, 1);
            break;
        case Refused:
            text += refusalText(reply);
            return giveUp(type);
        default:
            return ++driver.loop.retryCount < driver.settings.propItem3 ? int(SendAgain)
                                                                        : giveUp(type);
    }
    if (exchange.stands())
        finishFrame();
    return Good;
}

namespace {

/** Takes the data of a good read reply; that to the read step of a write is merged into it. */
int dealReadFrameReturnSaveData(const QByteArray &reply, const RegisterType &type)
{
    if (driver.loop.sendState == QueuedWrite || driver.loop.sendState == RecipeWrite)
        appendMergedWrite(reply, type);
    else
        analyzeFrameOfVal(reply, driver.loop.frameList.at(0), type);
    return 0;
}

/** Nothing of `request` is used behind the first report: it may be gone then. */
void analyzeFrameOfVal(const QByteArray &reply, const FRAME_PRO &request, const RegisterType &type)
{
    quint16 values[MaxUnitsPerRead];
    readReplyValues(reply, request, type, values);
    const ExchangeUnderWay exchange;
    storeReadValues(request.var.stationNo, type, request.var.startAddr, request.readCount, values);
    if (exchange.stands() && driver.loop.sendState == RecipeRead)
        copyRecipeReply(values);
}

/** Settles the queued write that the frame in flight serves, if it does. */
void settleWrite(const RegisterType &type, int result)
{
    // A repeated write is settled already; what waits for the same range now is another one.
    if (driver.loop.sendState != QueuedWrite || !driver.loop.itemIsQueueHead)
        return;
    const VARIABLE &item = driver.loop.frameList.at(0).var;
    _write_FailOrSuc(item.stationNo, type, item.startAddr, item.count, result);
}

// ---- The end of a frame and of its item -----------------------------------------------------

void finishFrame()
{
    driver.loop.frameList.removeFirst();
    ++driver.loop.exchangeNo;
    driver.loop.retryCount = 0;
    if (driver.loop.frameList.isEmpty())
        dealListWhenFinish();
}

/** Ends the item with all its frames. */
int giveUp(const RegisterType &type)
{
    const ExchangeUnderWay exchange;
    driver.loop.lastFrameFailed = 1;
    settleWrite(type, 0);
    if (!exchange.stands())
        return GivenUp;
    while (driver.loop.frameList.size() > 1)
        driver.loop.frameList.removeLast();
    finishFrame();
    return GivenUp;
}

void dealListWhenFinish()
{
    switch (driver.loop.sendState) {
        case QueuedWrite:
            return finishWrite();
        case ConditionRead:
            return finishConditionRead();
        case CyclicRead:
            return finishCyclicRead();
        case RecipeWrite:
            return finishRecipeBlock(RecipeWrite, driver.loop.lastFrameFailed == 1);
        case RecipeRead:
            return finishRecipeBlock(RecipeRead, driver.loop.lastFrameFailed == 1);
    }
}

void finishWrite()
{
    if (!driver.loop.itemIsQueueHead)
        return;
    QMutexLocker locker(&driver.loop.mutex);
    driver.loop.writeList.removeFirst();
}

/**
 * The latest read's end is announced before it leaves the queue, so that what waits behind it and
 * is asked for again from inside the call is found there. A failure drops the whole batch first, so
 * that what the host then asks for stays.
 */
void finishConditionRead()
{
    if (!driver.loop.itemIsQueueHead)
        return;
    const bool failed = driver.loop.lastFrameFailed == 1;
    const bool batchDone = isSameRange(driver.loop.condReadList.first(), driver.loop.lastCondVar);
    if (failed) {
        driver.loop.condReadList.clear();
        ++driver.loop.condHeadNo;
    }
    const quint32 head = driver.loop.condHeadNo;
    if (batchDone)
        notifyHost(-1, -1, QLatin1String("-1"), failed ? -1 : 0);
    if (failed || head != driver.loop.condHeadNo)
        return;
    driver.loop.condReadList.removeFirst();
    ++driver.loop.condHeadNo;
    // Should the host have asked for the next frame from inside the call, it serves no head now.
    if (driver.loop.sendState == ConditionRead)
        driver.loop.itemIsQueueHead = false;
}

void finishCyclicRead()
{
    if (driver.loop.readList.size() >= 2)
        driver.loop.readIndex = (driver.loop.readIndex + 1) % int(driver.loop.readList.size());
}

}  // namespace

void restartLoop()
{
    driver.loop.readList.clear();
    driver.loop.writeList.clear();
    driver.loop.condReadList.clear();
    ++driver.loop.condHeadNo;
    driver.loop.sendState = Idle;
    driver.loop.runCount = 0;
    driver.loop.handShakeRequest = 0;
    driver.loop.retryCount = 0;
    driver.loop.lastFrameFailed = 0;
    driver.loop.frameList.clear();
    driver.loop.frameIndex = 0;
    driver.loop.itemIsQueueHead = false;
    ++driver.loop.exchangeNo;
}
