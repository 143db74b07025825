#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <optional>
#include <string>

namespace corvane::test {

/// A real process that stands in for a program: a copy of a small helper under that program's name,
/// holding memory. It ends with this object.
class LiveProcess {
public:
    LiveProcess(const QString &name, const QStringList &arguments, int mebibytes);
    ~LiveProcess();

    bool isReady();
    std::int64_t pid() const { return m_process.processId(); }

    /// Deletes the executable under the running process, as an upgrade does.
    void removeExecutable() const;

private:
    QTemporaryDir m_directory;
    QString m_executable;
    QProcess m_process;
};

/// A machine on which only the given processes run: its kernel files are this machine's.
class ProcView {
public:
    explicit ProcView(std::initializer_list<std::int64_t> pids);
    std::string root() const { return m_directory.path().toStdString(); }

private:
    QTemporaryDir m_directory;
};

/// A second way to the same facts, sharing no code with the program's: RssAnon and VmSwap as
/// `status` tells them, in bytes. Nothing when the process is gone or has none.
std::optional<std::uint64_t> footprintByStatus(std::int64_t pid);

/// How many processes of this machine are heavier than that footprint.
int heavierProcesses(std::uint64_t footprint);

/// Text of a file of the process, or nothing.
std::optional<QByteArray> processText(std::int64_t pid, const char *file);

} // namespace corvane::test
