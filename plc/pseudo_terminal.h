// A pseudo-terminal as the controller's serial port.
#ifndef PLC_PSEUDO_TERMINAL_H
#define PLC_PSEUDO_TERMINAL_H

#include <QString>
#include <QTimer>

#include "plc/door.h"

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

    QString name() const override { return name_; }
    void send(const QByteArray &bytes) override;

private:
    void takeIn();

    int master_ = -1;
    int slave_ = -1;
    QString name_;
    QString link_;  ///< the symbolic link that open() made, or empty
    QTimer unlocking_;
};

}  // namespace plc

#endif
