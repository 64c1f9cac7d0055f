// One exchange on the line to the controller. Replies carry no number that ties them to their
// request, so whose reply it is has to be told by time, length and what is owed: this is the loop
// of docs/host-guide.md, step by step, which has the reasons, too.
#ifndef PANEL_LINE_H
#define PANEL_LINE_H

#include <QtSerialPort/QSerialPort>

#include <host_interface.h>

#include <algorithm>
#include <chrono>

/** Blocks the thread that it lives in; needs no event loop. */
class Line
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

    QSerialPort m_port;  // 8N1; with a QTcpSocket all but open() stays, for a device server
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
        quint8 sum = 0;
        for (const char byte : frame.mid(1, frame.size() - 4))
            sum = quint8(sum + byte);
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
        if (m_port.bytesAvailable() == 0)
            m_port.waitForReadyRead(std::max(0, int(left.count())));
        return m_port.readAll();
    }

    /** A reply to the first try may be as late as this one; so may one to the last. */
    void noteLateness()
    {
        const Time age = std::clamp<Time>(now() - m_firstTry, m_latest, Longest);
        m_owedUntil += age - m_latest;
        m_latest = age;
    }

public:
    bool isOpen() const { return m_port.isOpen(); }
    QString errorText() const { return m_port.errorString(); }
    void close() { m_port.close(); }

    /** From what is opened anew nothing is expected. */
    bool open(const QString &device)
    {
        m_restless = m_owed = false;
        m_firstTry = now();
        m_port.setPortName(device);
        m_port.setBaudRate(BaudRate);
        return m_port.open(QIODevice::ReadWrite);
    }

    /**
     * Sends the request and returns its reply, or nothing when no good one came. retry: the driver
     * offers the frame again because the exchange before was not good.
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

        // 2: send. A busy machine can only make a reply look later than it is.
        if (!retry)
            m_firstTry = now();
        m_port.write(request);
        m_port.waitForBytesWritten(WritePatienceMs);
        until = now() + travel(frame.sendLen + frame.replyLen) + Timeout;
        m_owedUntil = until - Timeout + m_latest;

        // 3: collect. Whole frames that are not the reply are somebody else's, and set aside.
        QByteArray reply;
        bool early = false;
        deadline = until + Longest;
        while ((reply.size() < frame.replyLen || (early && reply.startsWith(Ack))) &&
               now() < deadline && !(bytes = receive(until)).isEmpty()) {
            reply += bytes;
            const auto isEarly = [&] {  // sooner than both can travel; 5 % are for the clocks
                return now() - m_firstTry < travel(frame.sendLen + reply.size()) * 95 / 100;
            };
            early = early || isEarly();
            for (int size = firstFrameSize(reply); size > 0 && (early || size != frame.replyLen);
                 size = firstFrameSize(reply)) {
                reply.remove(0, size);
                early = !reply.isEmpty() && isEarly();
            }
        }
        reply += receive(now());

        // 4: judge.
        const bool good = reply.size() == frame.replyLen && isWhole(reply);
        m_restless = !good && !reply.isEmpty();
        if (!good && reply.isEmpty())
            m_owed = true;
        else if (m_owed && retry)
            noteLateness();
        return good ? reply : QByteArray();
    }
};

#endif
