#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace corvane::test {

/// The program's file in the build folder.
QString programFile();

/// A process of the program, started as a session starts its programs: with the signals' default
/// actions. Killed with the object. Main thread.
class ProgramRun {
public:
    /// `file` and `arguments` may name a tool that runs the program.
    explicit ProgramRun(const QProcessEnvironment &environment, const QString &file = programFile(),
                        const QStringList &arguments = {});
    ~ProgramRun() { kill(); }
    ProgramRun(const ProgramRun &) = delete;
    ProgramRun &operator=(const ProgramRun &) = delete;

    qint64 id() const { return m_process.processId(); }
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }

    void send(int signal) const;
    void kill();

    /// Waits for the end. -1 for a process that crashed or does not end within two minutes.
    int exitStatus() const;

    /// What the program has written to its error output since the last call.
    QByteArray errors() { return m_process.readAllStandardError(); }

private:
    QProcess m_process;
};

} // namespace corvane::test
