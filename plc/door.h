// Where bytes from a host come in and go out: a pseudo-terminal or a TCP port.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>

namespace plc {

class Door : public QObject
{
    Q_OBJECT

public:
    /** What a host opens, such as "/dev/pts/3"; valid once the door is open. */
    virtual QString name() const = 0;
    /** Sends bytes; what the carrier has no room for is lost, as on a line that nobody reads. */
    virtual void send(const QByteArray &bytes) = 0;

signals:
    void received(const QByteArray &bytes);
};

}  // namespace plc
