#pragma once

#include "processes/ProcessSource_linux.h"

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
    LiveProcess(const QString &name, const QStringList &arguments, int mebibytes,
                const QString &mappedFile = {});
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
    ProcessSource source() const { return linuxProcesses(m_directory.path().toStdString()); }

private:
    QTemporaryDir m_directory;
};

/// A second reader of the same facts that shares no code with the program: RssAnon and VmSwap as
/// `status` shows them, in bytes. Absent when the process is gone or has none.
std::optional<std::uint64_t> footprintByStatus(std::int64_t pid);

/// How many processes of this machine are heavier than that footprint.
int heavierProcesses(std::uint64_t footprint);

/// The contents of a file of the process; absent when it cannot be read.
std::optional<QByteArray> processText(std::int64_t pid, const char *file);

} // namespace corvane::test
