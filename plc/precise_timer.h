// A single-shot timer with a resolution far below a millisecond, for pacing bytes.
#pragma once

#include <QtCore/QObject>

namespace plc {

class PreciseTimer : public QObject
{
    Q_OBJECT

public:
    PreciseTimer();
    ~PreciseTimer() override;

    /** The monotonic clock in nanoseconds. */
    static qint64 nowNs();
    /** Fires once when that clock reaches `ns`, in place of an earlier setting. */
    void fireAt(qint64 ns);

signals:
    void fired();

private:
    int m_timer;
};

}  // namespace plc
