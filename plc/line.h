// The line between controller and host: what arrives is answered, and every byte takes the time
// that it would take on a serial line.
#ifndef PLC_LINE_H
#define PLC_LINE_H

#include <QTimer>
#include <QVector>

#include "plc/answering.h"
#include "plc/door.h"
#include "plc/faults.h"
#include "plc/precise_timer.h"

namespace plc {

struct LineSettings
{
    int baud = 0;          ///< bits a second, 10 bits a byte; 0: bytes take no time
    int turnaroundMs = 0;  ///< from the end of a request to the start of its reply
};

class Line : public QObject
{
    Q_OBJECT

public:
    /** Serves `door`. All three stay the caller's and must outlive the line. */
    Line(Controller &controller, Faults &faults, Door &door, const LineSettings &settings);

private:
    struct Outgoing
    {
        qint64 startNs;  ///< when the first byte starts
        QByteArray bytes;
        int sent;
    };

    void takeIn(const QByteArray &bytes);
    void enqueue(const Outgoing &outgoing);
    void sendDue();

    Controller &controller_;
    Faults &faults_;
    Door &door_;
    qint64 byteNs_;
    qint64 turnaroundNs_;
    qint64 inputEndNs_ = 0;       ///< when the last byte taken in has arrived
    qint64 outputEndNs_ = 0;      ///< when the last transmission finished has left
    QVector<Outgoing> outgoing_;  ///< by start; the first may be on its way
    PreciseTimer sending_;
    QTimer silence_;
};

}  // namespace plc

#endif
