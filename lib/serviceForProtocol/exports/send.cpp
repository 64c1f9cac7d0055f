// Export: which frame the host sends next.
//
// The frame in flight is offered until the receive side has finished it. When none is pending, the
// next item is taken: recipe write, recipe read, queued write, condition read, cyclic read.
#include <QtCore/QMutexLocker>

#include "../../tolvane_link/tolvane_link.h"
#include "../recipe.h"

namespace {

enum {
    CyclicReadKind = 4,
    /** Items taken since the last cyclic read, up to which another one may be taken. */
    WritesBetweenReads = 9,
    ConditionReadsBetweenReads = 2
};

/** The recipe transfer the host asks for: RecipeWrite, RecipeRead or Idle. */
SendState requestedTransfer()
{
    if (!driver.hostShared)
        return Idle;
    QMutexLocker locker(driver.hostMutex);
    if (driver.hostShared[RecipeWriteRequest] == 1)
        return RecipeWrite;
    return driver.hostShared[RecipeReadRequest] == 1 ? RecipeRead : Idle;
}

/** Takes both requests back: there is no recipe, or no buffer, that could be transferred. */
void refuseTransfers()
{
    driver.rcpIndex = 0;
    QMutexLocker locker(driver.hostMutex);
    driver.hostShared[RecipeWriteRequest] = 0;
    driver.hostShared[RecipeReadRequest] = 0;
}

/** Takes the recipe block at rcpIndex; beyond the last one the current item is repeated. */
void takeRecipeBlock(SendState transfer)
{
    if (driver.rcpTransferOf != driver.rcpRegistration) {
        // Registered since the last block was taken: begin with the new recipe's first block.
        driver.rcpTransferOf = driver.rcpRegistration;
        driver.rcpIndex = 0;
    }
    driver.itemIsQueueHead = false;
    if (driver.rcpIndex < driver.rcpBlocks.size()) {
        rcpAddrToVar(driver.rcpIndex, driver.curVar, transfer == RecipeWrite);
        driver.sendState = transfer;
    }
}

/** Takes the head of a queue, which stays queued until its exchange has finished. */
void takeQueueHead(const QList<VARIABLE> &queue, SendState state)
{
    driver.curVar = queue.first();
    driver.itemIsQueueHead = true;
    driver.sendState = state;
    ++driver.runCount;
}

void takeCyclicRead()
{
    const AddressSpan &span = driver.readList.at(driver.readIndex);
    driver.curVar.kind = CyclicReadKind;
    driver.curVar.stationNo = span.stationNo;
    driver.curVar.regName = REG_LIST[span.regNumber];
    driver.curVar.startAddr = span.startAddr;
    driver.curVar.count = span.count;
    std::memset(driver.curVar.valueBuf, 0, sizeof driver.curVar.valueBuf);
    driver.sendState = CyclicRead;
    driver.runCount = 0;
}

void takeNextItem()
{
    if (driver.handShakeRequest) {
        driver.sendState = HandShake;
        return;
    }
    const SendState transfer = requestedTransfer();
    if (transfer != Idle && !driver.rcpRefused && driver.rcpBuffer)
        return takeRecipeBlock(transfer);
    if (transfer != Idle)
        refuseTransfers();

    if (!driver.writeList.isEmpty() && driver.runCount <= WritesBetweenReads) {
        takeQueueHead(driver.writeList, QueuedWrite);
    } else if (!driver.condReadList.isEmpty() && driver.runCount <= ConditionReadsBetweenReads) {
        takeQueueHead(driver.condReadList, ConditionRead);
    } else if (!driver.readList.isEmpty()) {
        takeCyclicRead();
    } else {
        driver.runCount = 0;
        driver.sendState = Idle;
    }
}

void buildFrames()
{
    switch (driver.sendState) {
        case HandShake:
            handShakeFrame();
            break;
        case QueuedWrite:
        case RecipeWrite:
            driver.itemsInFrame = 1;
            getWriteFrame(driver.curVar);
            break;
        case ConditionRead:
        case CyclicRead:
        case RecipeRead:
            // The list keeps its one element, so that no exchange allocates it anew.
            if (driver.curReadList.isEmpty())
                driver.curReadList.append(driver.curVar);
            else
                driver.curReadList[0] = driver.curVar;
            driver.itemsInFrame = getReadFrame(driver.curReadList);
            break;
        default:
            break;
    }
}

}  // namespace

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
