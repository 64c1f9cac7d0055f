// One exchange on the line to the controller. Replies carry no number that ties them to their
// request, so whose reply it is has to be told by time, length and what is owed: this is the loop
// of docs/host-guide.md, step by step, which has the reasons, too.
//
// Left to the guide is the proof by length and what hangs on it: that values are old once the line
// turns out to have been one behind, that an acknowledgement may be a copy, and that nothing is
// written down before it is proven. This panel writes single bits, too: the read step of a write of
// several would have to be sent until two replies in a row are alike. And within() is TIMEOUT.
#pragma once

#include <QtSerialPort/QSerialPort>

#include <host_interface.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <chrono>
#include <numeric>

/**
 * Blocks the thread that it lives in; needs no event loop. 8N1; with a QTcpSocket all but open()
 * and handle() stays, for a device server.
 */
class Line : public QSerialPort
{
    using Time = std::chrono::nanoseconds;

    // TIMEOUT and QUIET of the guide; LISTEN is 0 on a line that paces the bytes.
    static constexpr Time Timeout = std::chrono::milliseconds(500);
    static constexpr Time Quiet = std::chrono::milliseconds(500);
    static constexpr Time Longest = 10 * Quiet;
    static constexpr int BaudRate = 115200;
    static constexpr int BitsPerByte = 10;  ///< start and stop bit included
    static constexpr int WritePatienceMs = 1000;
    static constexpr char Ack = 0x06;  ///< opens a reply
    static constexpr char Eot = 0x04;  ///< closes it

    QByteArray m_lastRequest;
    bool m_restless = false;  // bytes that make no sense came; the rest may be on its way
    bool m_owed = false;      // the last request may still be answered
    Time m_firstTry{0};       // when it was handed over for the first of its tries
    Time m_owedUntil{0};      // how long it may be answered
    Time m_latest = Timeout + Quiet;

    static Time now() { return std::chrono::steady_clock::now().time_since_epoch(); }

    /** How long bytes are on the wire. Where nothing paces them it would be 0. */
    static Time travel(qint64 bytes)
    {
        return Time(std::chrono::seconds(BitsPerByte * bytes)) / BaudRate;
    }

    /** Size of the frame that the bytes begin with; 0 when there is none yet. */
    static int firstFrameSize(const QByteArray &bytes)
    {
        return bytes.startsWith(Ack) ? int(bytes.indexOf(Eot)) + 1 : 0;
    }

    /** The two digits before the last byte are the sum of what lies between them and the first. */
    static bool isWhole(const QByteArray &frame)
    {
        if (frame.size() < 5 || !frame.startsWith(Ack) || !frame.endsWith(Eot))
            return false;
        const int sum = std::accumulate(frame.begin() + 1, frame.end() - 3, 0);
        return frame.mid(frame.size() - 3, 2) == QByteArray(1, char(sum)).toHex().toUpper();
    }

    static bool areWhole(const QByteArray &frames)
    {
        const int size = firstFrameSize(frames);
        return frames.isEmpty() || (isWhole(frames.left(size)) && areWhole(frames.mid(size)));
    }

    /** What has come, as soon as there is any; nothing when the time is up or the device is gone.
     */
    QByteArray receive(Time until)
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - now());
        if (bytesAvailable() == 0)
            waitForReadyRead(std::max(0, int(left.count())));
        return readAll();
    }

    /** A reply to the first try may be as late as this one; so may one to the last. */
    void noteLateness()
    {
        const Time age = std::clamp<Time>(now() - m_firstTry, m_latest, Longest);
        m_owedUntil += age - m_latest;
        m_latest = age;
    }

public:
    /** What was owed is owed still, and a device server delivers it to the next connection. */
    bool open(const QString &device)
    {
        m_restless = false;
        m_owedUntil = std::max(m_owedUntil, now() + Quiet);
        setPortName(device);
        setBaudRate(BaudRate);
        return QSerialPort::open(ReadWrite);
    }

    /**
     * Sends the request and returns its reply, or nothing when no good one came. retry: the driver
     * offers the frame again because the exchange before, on the line as it was opened then, was
     * not good.
     */
    QByteArray ask(const FRAME_PRO &frame, bool retry)
    {
        const QByteArray request(reinterpret_cast<const char *>(frame.frame), frame.sendLen);
        const bool sameRequest = request == m_lastRequest;
        m_lastRequest = request;

        // 1: come to rest.
        Time until = now() + (m_restless ? Quiet : Time(0));
        if (m_owed && !sameRequest)
            until = std::max(until, m_owedUntil);
        Time deadline = until + Longest;
        QByteArray stale, bytes;
        while (now() < deadline && !(bytes = receive(until)).isEmpty()) {
            stale += bytes;
            if (!areWhole(stale))
                until = std::max(until, now() + Quiet);
            else if (m_owed)
                noteLateness();
        }
        m_owed = m_owed && sameRequest;

        // 2: send. A busy machine can only make a reply look later than it is, so what is there
        // sooner than both can travel is early; 5 % are for the clocks.
        if (!retry)
            m_firstTry = now();
        const auto earliest = [&](qint64 replyBytes) {
            return m_firstTry + travel(frame.sendLen + replyBytes) * 95 / 100;
        };
        QByteArray reply;
        bool early = false;
        Time lateBy{0};  // no reply of n bytes ends before this and travel(n)
        const auto look = [&] {
            const Time before = now();  // and once more behind it: the panel may stand still here
            int beneath = 0;
            ::ioctl(handle(), FIONREAD, &beneath);
            const qint64 there = reply.size() + bytesAvailable() + beneath;
            if (there < frame.replyLen)
                lateBy = std::max(lateBy, before - travel(there + 1));
            early = early || (there > 0 && now() < earliest(there));
        };
        look();
        write(request);
        waitForBytesWritten(WritePatienceMs);
        const Time arriving = now() + travel(frame.sendLen + frame.replyLen);
        m_owedUntil = arriving + m_latest;

        // 3: collect. Whole frames that are not the reply are somebody else's, and set aside. One
        // that no look has proven to be the reply may be followed by its like, and by nothing else.
        until = arriving + travel(frame.replyLen) + Timeout;
        deadline = until + Longest;
        bytes = receive(arriving - travel(frame.replyLen));  // the first look is due
        do {
            reply += bytes;
            look();
            for (int size = firstFrameSize(reply); size > 0 && (early || size != frame.replyLen);
                 size = firstFrameSize(reply)) {
                reply.remove(0, size);
                lateBy += travel(size);
                early = false;
                look();
            }
            if (reply.size() >= frame.replyLen &&
                lateBy + travel(frame.replyLen) >= earliest(frame.replyLen))
                until = now();
        } while ((reply.size() < frame.replyLen || reply.startsWith(Ack)) && now() < deadline &&
                 !(bytes = receive(until)).isEmpty());

        // 4: judge.
        const QByteArray first = reply.left(frame.replyLen);
        const bool good = isWhole(first) && reply == first.repeated(reply.size() / frame.replyLen);
        m_restless = !good && !reply.isEmpty();
        if (!good && reply.isEmpty())
            m_owed = true;
        else if (m_owed && retry)
            noteLateness();
        return good ? first : QByteArray();
    }
};
