#include "support/ProgramRun.h"

#include "threads/MainThread.h"

#include <QTest>

#include <csignal>

namespace corvane::test {

QString programFile()
{
    return QStringLiteral(CORVANE_PROGRAM);
}

ProgramRun::ProgramRun(const QProcessEnvironment &environment, const QString &file,
                       const QStringList &arguments)
{
    assertMainThread();
    m_process.setProcessEnvironment(environment);
    m_process.setChildProcessModifier([] {
        // The test's own parent may ignore some of them.
        for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGPIPE})
            std::signal(number, SIG_DFL);
    });
    m_process.start(file, arguments);
    m_process.waitForStarted();
}

void ProgramRun::send(int signal) const
{
    ::kill(static_cast<pid_t>(id()), signal);
}

void ProgramRun::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

int ProgramRun::exitStatus() const
{
    const bool hasEnded = QTest::qWaitFor([this] { return !isRunning(); }, 120'000);
    return hasEnded && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

} // namespace corvane::test
