// The line between controller and host, without a clock of its own: bytes go in at a time, replies
// come out at times. Every byte takes as long as it would on a serial line.
#pragma once

#include "plc/answering.h"
#include "plc/faults.h"

#include <QtCore/QByteArray>
#include <QtCore/QVector>

namespace plc {

struct LineSettings
{
    int baud = 0;          ///< bits a second, 10 bits a byte; 0: bytes take no time
    int turnaroundMs = 0;  ///< from the end of a request to the start of its reply
    int pieceBytes = 16;   ///< bytes of a reply that are handed over at a time
};

/**
 * Times are nanoseconds of any clock that does not go back; it may show a different time on every
 * call. What was due between two calls is done by the later one.
 */
class Pacing
{
public:
    /** Controller and faults stay the caller's and must outlive this. */
    Pacing(Controller &controller, Faults &faults, const LineSettings &settings);

    /** The host starts to send these bytes now; they are on the line behind those before them. */
    void receive(const QByteArray &bytes, qint64 nowNs);

    /** The bytes that have left for the host since the last call. */
    QByteArray transmit(qint64 nowNs);

    /** When transmit() is to be called next; -1 when nothing is due ever. */
    qint64 nextNs() const { return m_nextNs; }

private:
    struct Outgoing
    {
        qint64 startNs;  ///< when the first byte starts
        QByteArray bytes;
        int sent;
    };

    void enqueue(const Outgoing &outgoing);

    Controller &m_controller;
    Faults &m_faults;
    qint64 m_byteNs;
    qint64 m_turnaroundNs;
    int m_pieceBytes;
    qint64 m_inputEndNs = 0;       ///< when the last byte taken in has arrived
    qint64 m_outputEndNs = 0;      ///< when the last transmission finished has left
    qint64 m_silenceNs = -1;       ///< when the request under way is given up, or -1
    qint64 m_nextNs = -1;          ///< what nextNs() tells
    QVector<Outgoing> m_outgoing;  ///< by start; the first may be on its way
};

}  // namespace plc
