// Messages for the user, which do no harm to a terminal whatever files, names and devices bring
// along, and what ends a command early: a message and the exit status.
#pragma once

#include "plc/literals.h"

#include <exception>

namespace host {

/** The text with control characters, but for ends of lines, written as \x1B. */
QString printable(const QString &text);

/** The text in quotes, as messages name what was wrong: 80 characters at most, else its ends. */
QString quoted(const QString &text);

/** Says it on standard error, the program's name in front. */
void tell(const QString &message);

/** Exit statuses of every command. */
enum ExitStatus { AllRight = 0, SomethingFailed = 1, BadInput = 2 };

/** Thrown where a command cannot go on; main() prints the message and ends with the status. */
class Failure : public std::exception
{
public:
    explicit Failure(const QString &message, ExitStatus status = SomethingFailed)
        : m_message(printable(message).toUtf8()), m_status(status)
    {
    }

    /** UTF-8, without control characters. */
    const char *what() const noexcept override { return m_message.constData(); }
    QString text() const { return QString::fromUtf8(m_message); }
    ExitStatus status() const { return m_status; }

private:
    QByteArray m_message;
    ExitStatus m_status;
};

}  // namespace host
