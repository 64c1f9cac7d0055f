// The communication with the controller: what the driver borrows, what the page may ask for, and
// the thread that runs the loop.
//
// There are two locks. The driver's mutex guards the two recipe request bytes and nothing else; the
// driver locks it by itself. The gate is the panel's own: no two exports may run at the same time,
// so every call goes through it. It is never held while the line is waited for, so the page never
// waits for the line; and it is locked before the mutex, never while holding that.
#pragma once

#include <QtCore/QMutexLocker>
#include <QtCore/QThread>
#include <QtCore/QtEndian>

#include <utility>

#include "driver.h"
#include "line.h"

/** What is known of a tag: nothing since its page was shown; an old value; one just read. */
enum Quality { Unknown, Old, Fresh };

/**
 * A tag is a word or bit of the controller: the driver's own key, which has room for what the panel
 * keeps with it. hostText is the label, hostValue1 the Quality.
 */
using Tags = QList<KEY_ADDRESS>;

/**
 * One in a process, as the driver is. Signals are emitted with the gate held, some by the caller of
 * a function below: connect them with Qt::QueuedConnection.
 */
class Communication : public QThread
{
    Q_OBJECT

public:
    enum Transfer { None = 0, Down = RecipeWriteRequest, Up = RecipeReadRequest };

    Communication(const Driver &driver, const QString &device) : m_driver(driver), m_device(device)
    {
        s_instance = this;
        m_driver.setAddrValueChangeCallBack(&Communication::report);
        m_driver.initProperty(m_shared, nullptr, m_recipe, nullptr, Properties, &m_mutex);
    }

    /** Ends the thread, once the orders that wait are carried out or the line is away. */
    ~Communication() override
    {
        requestInterruption();
        wait();
        // The driver stays loaded and gives back what it has borrowed.
        m_driver.setAddrValueChangeCallBack(nullptr);
        m_driver.initProperty(nullptr, nullptr, nullptr, nullptr, Properties, nullptr);
    }

    /** Reads these, and no others, over and over from now on. */
    void showPage(const Tags &tags)
    {
        const QMutexLocker gate(&m_gate);
        m_driver.addrMerge(tags);
        m_page = tags;
    }

    Tags page()
    {
        const QMutexLocker gate(&m_gate);
        return m_page;
    }

    /** What was last read or written; words are signed. */
    int value(const KEY_ADDRESS &tag)
    {
        unsigned char bytes[2] = {};  // a bit takes one
        const QMutexLocker gate(&m_gate);
        m_driver.getData(tag.stationNo, tag.regName, tag.startAddr, 1, bytes);
        return qFromLittleEndian<qint16>(bytes);
    }

    /** Reads once; readOnceEnded() follows. Not to be called again before that. */
    void readOnce(const KEY_ADDRESS &tag)
    {
        const QMutexLocker gate(&m_gate);
        m_driver.addConditionRead(tag, OnceKind);
    }

    /**
     * Shown at once; orderNews() follows if the controller does not confirm it. (A full queue
     * loses its last write. It holds 513, and a write to an address that waits takes the place of
     * the one before: a panel that writes to fewer addresses need not count.)
     */
    void write(const KEY_ADDRESS &tag, int value)
    {
        unsigned char bytes[2];
        qToLittleEndian(qint16(value), bytes);
        const QMutexLocker gate(&m_gate);
        m_driver.setData(tag.stationNo, tag.regName, tag.startAddr, 1, bytes, OrderKind);
    }

    /**
     * The recipe is one run of words from `first` on, RecipeUnits at most. (One of several runs has
     * them in the buffer in the order of their addresses, those that touch in consecutive units.)
     */
    void setRecipe(const KEY_ADDRESS &first, const QVector<qint16> &values)
    {
        _RCP_VAR_PRO entry;
        entry.ownerKey = ReportNumber;
        entry.regName = first.regName;
        entry.startAddr = first.startAddr;
        entry.count = int(values.size());
        const QMutexLocker gate(&m_gate);
        m_driver.setRcpAddress({entry});
        qToLittleEndian<qint16>(values.constData(), values.size(), m_recipe);
    }

    /** Writes the recipe to the controller, or reads it from there; orderNews() tells how it ends.
     */
    void transfer(Transfer direction)
    {
        const QMutexLocker gate(&m_gate);
        const bool busy = m_wanted != None || m_transfer != None;
        if (!busy)
            m_wanted = direction;
        emit orderNews(busy ? "Recipe: one at a time" : "Recipe: begun");
    }

signals:
    void changed();  ///< values or their quality
    void readOnceEnded(bool good);
    void orderNews(const QString &text);
    void lineChanged(const QString &trouble);  ///< why it is away; empty when it is there

private:
    /**
     * The driver's callback, inside an export and with the gate held: it only posts. (And inside
     * the report of a change the cache still has the value from before.)
     */
    static void report(int first, int, const QString &, int address)
    {
        if (first == ReportNumber)
            emit s_instance->changed();
        else if (first == -1)  // 0 would be a unit of the recipe buffer that was read
            emit s_instance->readOnceEnded(address == 0);
    }

    /**
     * The loop. While the line is away, reads go on looking for it. Orders are not kept for its
     * return, perhaps half an hour later: without asking the line, the driver is told that they had
     * no reply.
     */
    void run() override
    {
        Line line;
        FRAME_PRO frame;
        int givenUp = 0;
        for (;;) {
            const bool stopping = isInterruptionRequested();
            const bool retry = m_pending && line.isOpen();
            if (!line.isOpen() && !line.open(m_device)) {
                noteLine(line.errorString());
                msleep(ReopenPauseMs);
            }
            nextFrame(&frame);
            if (stopping && !m_isOrder)
                return;
            if (!m_pending) {
                msleep(IdlePauseMs);
                continue;
            }
            const bool ask = line.isOpen() && (m_trouble.isEmpty() || !m_isOrder);
            const int result = finish(frame, ask ? line.ask(frame, retry) : QByteArray());
            if (result == Good) {
                givenUp = 0;
                noteLine(QString());
            } else if (ask && result == GivenUp && ++givenUp >= SilentRequests) {
                noteLine("the controller does not answer");
                line.close();  // a device that was pulled out says no more than that
            }
        }
    }

    /**
     * A transfer is requested only while no frame is pending: all frames are its own then, until
     * the driver puts the byte back. Their kind says nothing.
     */
    void nextFrame(FRAME_PRO *frame)
    {
        const QMutexLocker gate(&m_gate);
        if (!m_pending && m_transfer == None && m_wanted != None) {
            m_transfer = std::exchange(m_wanted, None);
            const QMutexLocker mutex(&m_mutex);
            m_shared[m_transfer] = 1;
        }
        m_pending = m_driver.getSendFrame(frame) == 1;
        noteTransferEnd("refused");
        m_isOrder = m_transfer != None || (m_pending && frame->var.kind == OrderKind);
    }

    /** Hands over the reply, or none, and tells what has ended by it. */
    int finish(const FRAME_PRO &frame, const QByteArray &reply)
    {
        const QMutexLocker gate(&m_gate);
        QString text;
        const int result = m_driver.dealRcvFrame(reply, &text);
        m_pending = result == SendAgain;
        if (m_isOrder && m_transfer == None && result == GivenUp)
            emit orderNews("Not confirmed: " + text);
        noteTransferEnd(result == Good ? "complete" : "given up, perhaps half way");
        if (!m_isOrder && !m_pending)
            noteQuality(&frame.var, result == Good ? Fresh : Old);
        return result;
    }

    /** The driver puts the byte back at the end; the call in which it does so tells how. */
    void noteTransferEnd(const char *how)
    {
        const QMutexLocker mutex(&m_mutex);
        if (m_transfer == None || m_shared[m_transfer] == 1)
            return;
        m_transfer = None;
        emit orderNews(QString("Recipe: ") + how);
    }

    void noteLine(const QString &trouble)
    {
        if (trouble == m_trouble)
            return;
        const QMutexLocker gate(&m_gate);
        m_trouble = trouble;
        emit lineChanged(trouble);
        if (!trouble.isEmpty())
            noteQuality(nullptr, Old);
    }

    /**
     * Of what the item has read, or of all. No callback tells of a first value of 0, nor of one
     * that is as it was, but the request does.
     */
    void noteQuality(const VARIABLE *item, Quality quality)
    {
        for (KEY_ADDRESS &tag : m_page) {
            const bool isNews = (tag.hostValue1 == Fresh) != (quality == Fresh);
            if (!isNews || (item && !covers(*item, tag)))
                continue;
            tag.hostValue1 = quality;
            emit changed();
        }
    }

    /** Bits of words are asked for as words: M_bit 325 comes as M_W 20. */
    static bool covers(const VARIABLE &item, const KEY_ADDRESS &tag)
    {
        const bool inWord = tag.regName.endsWith("_bit");
        const QString regName = inWord ? tag.regName.chopped(3) + "W" : tag.regName;
        const int offset = (inWord ? tag.startAddr / 16 : tag.startAddr) - item.startAddr;
        return item.regName == regName && offset >= 0 && offset < item.count;
    }

    enum { ReportNumber = 1, RecipeUnits = 100 };
    /** ReportNumber; writes are sent; spare; three tries; blocks of 64 words. */
    static constexpr const char *Properties = "1#0#0#3#64";
    enum DriverResult { Good = 1, GivenUp = 2, SendAgain = 8 };
    /** Kinds travel with the frames and come back, so they tell what a frame is for. */
    enum Kind { OnceKind = 1, OrderKind = 2 };
    /** SilentRequests: given up in a row, so it is the controller and not an address. */
    enum { IdlePauseMs = 5, ReopenPauseMs = 500, SilentRequests = 2 };

    inline static Communication *s_instance = nullptr;  // the callback does not tell whose it is
    const Driver &m_driver;
    const QString m_device;

    // What the driver borrows.
    unsigned char m_shared[SharedBlockBytes] = {};
    unsigned char m_recipe[2 * RecipeUnits] = {};
    QMutex m_mutex;

    QMutex m_gate;  // guards the exports, what they borrow, and:
    Tags m_page;
    Transfer m_wanted = None;

    // The communication thread's own.
    Transfer m_transfer = None;  // whose request byte stands
    bool m_pending = false;      // the frame offered has not been finished
    bool m_isOrder = false;      // and serves no read
    QString m_trouble = "not connected yet";
};
