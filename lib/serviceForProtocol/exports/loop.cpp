// Exports: the communication loop. One exchange, in the order in which it happens: the next item is
// taken and asked for; its reply is judged and decoded; the item is finished.
//
// The frame in flight stays at the head of driver.frameList until its reply is good or it is given
// up; a queued item stays at the head of its queue just as long.
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
    if (driver.frameList.isEmpty()) {
        takeNextItem();
        buildFrames();
    }
    if (driver.frameList.isEmpty())
        return 0;
    *frame = driver.frameList.at(0);
    return 1;
}

namespace {

void takeNextItem()
{
    const SendState transfer = nextTransfer();
    if (driver.handShakeRequest) {
        driver.sendState = HandShake;
    } else if (transfer != Idle) {
        takeRecipe(transfer);
    } else if (!driver.writeList.isEmpty() && driver.runCount < WritesInARow) {
        takeQueueHead(driver.writeList, QueuedWrite);
    } else if (!driver.condReadList.isEmpty() && driver.runCount < ConditionReadsInARow) {
        takeQueueHead(driver.condReadList, ConditionRead);
    } else if (!driver.readList.isEmpty()) {
        takeCyclicRead();
    } else {
        driver.runCount = 0;
        driver.sendState = Idle;
    }
}

/**
 * The next block of the transfer. When there is none, curVar and sendState stay those of the item
 * before, so that it is sent once more; nothing is sent when there was none (Idle).
 */
void takeRecipe(SendState transfer)
{
    driver.itemIsQueueHead = false;  // also of a repeated one: its queue has gone on
    if (takeRecipeBlock(transfer, driver.curVar))
        driver.sendState = transfer;
}

void takeQueueHead(const QList<VARIABLE> &queue, SendState state)
{
    driver.curVar = queue.first();
    driver.itemIsQueueHead = true;
    driver.sendState = state;
    ++driver.runCount;
}

void takeCyclicRead()
{
    driver.curVar.kind = CyclicReadKind;
    setRange(driver.curVar, driver.readList.at(driver.readIndex));
    std::memset(driver.curVar.valueBuf, 0, sizeof driver.curVar.valueBuf);
    driver.sendState = CyclicRead;
    driver.runCount = 0;
}

void buildFrames()
{
    driver.itemsInFrame = 1;
    switch (driver.sendState) {
        case HandShake:
            return handShakeFrame();
        case QueuedWrite:
        case RecipeWrite:
            return getWriteFrame(driver.curVar);
        case ConditionRead:
        case CyclicRead:
        case RecipeRead:
            return getReadFrame(driver.curVar);
    }
}

}  // namespace

// ---- What came back -------------------------------------------------------------------------

int intf_dealRcvFrame(QByteArray reply, QString *errorText)
{
    QString unasked;
    QString &text = errorText ? *errorText : unasked;
    text = QLatin1String("");
    if (driver.frameList.isEmpty())
        return NoFrameInFlight;
    const VARIABLE &item = driver.frameList.at(0).var;
    const RegisterType type = registerType(item.regName);
    text = getErrorInfo(type, item, int(reply.size()));
    // From any report the host may start over or even finish this frame itself.
    const ExchangeUnderWay exchange;
    switch (check_rcv_data(reinterpret_cast<const unsigned char *>(reply.constData()),
                           int(reply.size()))) {
        case GoodReadReply:
            driver.lastFrameFailed = 0;
            dealReadFrameReturnSaveData(reply, type);
            break;
        case GoodAcknowledgement:
            driver.lastFrameFailed = 0;
            settleWrite(type, 1);
            break;
        case Refused:
            text += refusalText(reply);
            return giveUp(type);
        default:
            return ++driver.retryCount < driver.propItem3 ? int(SendAgain) : giveUp(type);
    }
    if (exchange.stands())
        finishFrame();
    return Good;
}

namespace {

/** Takes the data of a good read reply; that to the read step of a write is merged into it. */
int dealReadFrameReturnSaveData(const QByteArray &reply, const RegisterType &type)
{
    if (driver.sendState == QueuedWrite || driver.sendState == RecipeWrite)
        appendMergedWrite(reply, type);
    else
        analyzeFrameOfVal(reply, driver.frameList.at(0), type);
    return 0;
}

/** Nothing of `request` is used behind the first report: it may be gone then. */
void analyzeFrameOfVal(const QByteArray &reply, const FRAME_PRO &request, const RegisterType &type)
{
    quint16 values[MaxUnitsPerRead];
    readReplyValues(reply, request, type, values);
    const ExchangeUnderWay exchange;
    storeReadValues(request.var.stationNo, type, request.var.startAddr, request.readCount, values);
    if (exchange.stands() && driver.sendState == RecipeRead)
        copyRecipeReply(values);
}

/** Settles the queued write that the frame in flight serves, if it does. */
void settleWrite(const RegisterType &type, int result)
{
    // A repeated write is settled already; what waits for the same range now is another one.
    if (driver.sendState != QueuedWrite || !driver.itemIsQueueHead)
        return;
    const VARIABLE &item = driver.frameList.at(0).var;
    _write_FailOrSuc(item.stationNo, type, item.startAddr, item.count, result);
}

// ---- The end of a frame and of its item -----------------------------------------------------

void finishFrame()
{
    driver.frameList.removeFirst();
    ++driver.exchangeNo;
    driver.retryCount = 0;
    if (driver.frameList.isEmpty())
        dealListWhenFinish();
}

/** Ends the item with all its frames. */
int giveUp(const RegisterType &type)
{
    const ExchangeUnderWay exchange;
    driver.lastFrameFailed = 1;
    settleWrite(type, 0);
    if (!exchange.stands())
        return GivenUp;
    while (driver.frameList.size() > 1)
        driver.frameList.removeLast();
    finishFrame();
    return GivenUp;
}

void dealListWhenFinish()
{
    switch (driver.sendState) {
        case QueuedWrite:
            return finishWrite();
        case ConditionRead:
            return finishConditionRead();
        case CyclicRead:
            return finishCyclicRead();
        case RecipeWrite:
            return finishRecipeBlock(RecipeWrite, driver.lastFrameFailed == 1);
        case RecipeRead:
            return finishRecipeBlock(RecipeRead, driver.lastFrameFailed == 1);
    }
}

void finishWrite()
{
    if (!driver.itemIsQueueHead)
        return;
    QMutexLocker locker(&driver.mutex);
    driver.writeList.removeFirst();
}

/**
 * The latest read's end is announced before it leaves the queue, so that what waits behind it and
 * is asked for again from inside the call is found there. A failure drops the whole batch first, so
 * that what the host then asks for stays.
 */
void finishConditionRead()
{
    if (!driver.itemIsQueueHead)
        return;
    const bool failed = driver.lastFrameFailed == 1;
    const bool batchDone = isSameRange(driver.condReadList.first(), driver.lastCondVar);
    if (failed) {
        driver.condReadList.clear();
        ++driver.condHeadNo;
    }
    const quint32 head = driver.condHeadNo;
    if (batchDone)
        notifyHost(-1, -1, QLatin1String("-1"), failed ? -1 : 0);
    if (failed || head != driver.condHeadNo)
        return;
    driver.condReadList.removeFirst();
    ++driver.condHeadNo;
    // Should the host have asked for the next frame from inside the call, it serves no head now.
    if (driver.sendState == ConditionRead)
        driver.itemIsQueueHead = false;
}

void finishCyclicRead()
{
    if (driver.readList.size() >= 2)
        driver.readIndex = (driver.readIndex + 1) % int(driver.readList.size());
}

}  // namespace

void restartLoop()
{
    driver.readList.clear();
    driver.writeList.clear();
    driver.condReadList.clear();
    ++driver.condHeadNo;
    driver.sendState = Idle;
    driver.runCount = 0;
    driver.handShakeRequest = 0;
    driver.retryCount = 0;
    driver.lastFrameFailed = 0;
    driver.frameList.clear();
    driver.frameIndex = 0;
    driver.itemIsQueueHead = false;
    ++driver.exchangeNo;
}
