#pragma once

#include "platform/FileDescriptor.h"

#include <QStringList>

#include <array>
#include <vector>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane::test {

/// A helper program of a test, killed with this object. Its output can be read; its errors are
/// discarded. Not a QProcess, because ThreadSanitizer does not support the way that it forks.
class SpawnedProgram {
public:
    SpawnedProgram() = default;
    ~SpawnedProgram() { kill(); }
    SpawnedProgram(const SpawnedProgram &) = delete;
    SpawnedProgram &operator=(const SpawnedProgram &) = delete;

    /// Searches PATH; false if the program does not exist.
    bool start(const QStringList &command)
    {
        std::array<int, 2> ends = {};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            return false;
        m_output = FileDescriptor(ends[0]);
        const FileDescriptor writingEnd(ends[1]);

        QByteArrayList words;
        for (const QString &word : command)
            words.append(word.toUtf8());
        std::vector<char *> arguments;
        for (QByteArray &word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions = {};
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, writingEnd.get(), STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        const int error =
            posix_spawnp(&m_pid, arguments[0], &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0)
            m_pid = 0;
        return error == 0;
    }

    void send(int signal) const
    {
        if (m_pid != 0)
            ::kill(m_pid, signal);
    }

    void kill()
    {
        send(SIGKILL);
        if (m_pid != 0)
            waitpid(m_pid, nullptr, 0);
        m_pid = 0;
    }

    const FileDescriptor &output() const { return m_output; }

private:
    pid_t m_pid = 0; ///< 0 if not running.
    FileDescriptor m_output;
};

} // namespace corvane::test
