// Starts and ends the simulated controller.
#include "host/exchange/controller_process.h"

#include "host/output/failure.h"

#include <QtCore/QDeadlineTimer>

#include <csignal>

#include <sys/prctl.h>

namespace host {

namespace {

constexpr int StartPatienceMs = 10000;
constexpr int EndPatienceMs = 3000;

// Runs in the child between fork and exec.
void endWithParent()
{
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}

}  // namespace

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
BoundProcess::BoundProcess() = default;

void BoundProcess::setupChildProcess()
{
    endWithParent();
}
#else
BoundProcess::BoundProcess()
{
    setChildProcessModifier(endWithParent);
}
#endif

ControllerProcess::ControllerProcess(const QString &program, const QStringList &arguments)
{
    m_process.start(program, arguments);
    const QDeadlineTimer deadline(StartPatienceMs);
    while (!m_process.canReadLine() && m_process.waitForReadyRead(int(deadline.remainingTime()))) {
    }
    const QByteArray greeting("listening on ");
    const QByteArray line = m_process.readLine().trimmed();
    if (!line.startsWith(greeting)) {
        m_process.kill();
        m_process.waitForFinished(EndPatienceMs);
        const QByteArray said = line + m_process.readAllStandardError().trimmed();
        const QString why = said.isEmpty() ? m_process.errorString() : QString::fromLocal8Bit(said);
        throw Failure("the simulated controller %1 does not serve: %2"_s.arg(program, why));
    }
    m_device = QString::fromLocal8Bit(line.mid(greeting.size()));
}

ControllerProcess::~ControllerProcess()
{
    m_process.terminate();
    if (m_process.waitForFinished(EndPatienceMs))
        return;
    m_process.kill();
    m_process.waitForFinished(EndPatienceMs);
}

}  // namespace host
