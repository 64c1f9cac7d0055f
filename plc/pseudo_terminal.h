// A pseudo-terminal as the controller's serial port.
#pragma once

#include "plc/door.h"

#include <QtCore/QString>
#include <QtCore/QTimer>

namespace plc {

class PseudoTerminal : public Door
{
    Q_OBJECT

public:
    PseudoTerminal() = default;
    /** Closes the terminal; removes the symbolic link if open() made it and it is still ours. */
    ~PseudoTerminal() override;

    /**
     * Opens a terminal in raw mode and, unless `link` is empty, makes a symbolic link to it there.
     * Returns an empty text, or what went wrong. To be called once.
     */
    QString open(const QString &link);

    QString name() const override { return m_name; }
    void send(const QByteArray &bytes) override;

private:
    void takeIn();

    int m_master = -1;
    int m_slave = -1;
    QString m_name;
    QString m_link;  ///< the symbolic link that open() made, or empty
    QTimer m_unlocking;
};

}  // namespace plc
