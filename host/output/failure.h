// What ends a command early: a message for the user and the exit status.
#pragma once

#include "plc/literals.h"

#include <exception>

namespace host {

/** Exit statuses of every command. */
enum ExitStatus { AllRight = 0, SomethingFailed = 1, BadInput = 2 };

/** Thrown where a command cannot go on; main() prints the message and ends with the status. */
class Failure : public std::exception
{
public:
    explicit Failure(const QString &message, ExitStatus status = SomethingFailed)
        : m_message(message.toUtf8()), m_status(status)
    {
    }

    const char *what() const noexcept override { return m_message.constData(); }  ///< UTF-8
    ExitStatus status() const { return m_status; }

private:
    QByteArray m_message;
    ExitStatus m_status;
};

}  // namespace host
