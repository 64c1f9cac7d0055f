// The simulated controller as a process of its own, on a pseudo-terminal.
#pragma once

#include <QtCore/QProcess>

namespace host {

/** A process that ends with this one, however this one ends. */
class BoundProcess : public QProcess
{
public:
    BoundProcess();

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
protected:
    void setupChildProcess() override;
#endif
};

class ControllerProcess
{
public:
    /**
     * Starts the program and waits until it serves. Throws Failure when it does not, with what it
     * said.
     */
    ControllerProcess(const QString &program, const QStringList &arguments);
    ~ControllerProcess();  ///< ends the process

    /** Path of the device that the controller is reached through. */
    QString device() const { return m_device; }

private:
    BoundProcess m_process;
    QString m_device;
};

}  // namespace host
