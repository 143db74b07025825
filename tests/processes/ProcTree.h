#pragma once

#include "processes/ProcessSource_linux.h"
#include "support/MachineTree.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <string>

namespace corvane::test {

/// One process of a made-up machine. Files that are absent are not written: opening them fails as
/// it does for a process that has ended or belongs to someone else.
struct FakeProcess {
    std::uint64_t own = 0;                     ///< RssAnon in bytes.
    std::uint64_t shared = 0;                  ///< RssFile and RssShmem in bytes.
    std::uint64_t room = 0;                    ///< Address space on top of these, in bytes.
    std::optional<std::uint64_t> swapped = {}; ///< VmSwap in bytes; absent: no `status`.
    std::uint64_t startTime = 1;               ///< In `stat`.
    int parent = 1;                            ///< The same.
    std::optional<QByteArray> comm = {};
    std::optional<QByteArray> cmdline = {};
    std::optional<QByteArray> exe = {};    ///< Where the link leads.
    std::optional<QByteArray> cwd = {};    ///< The same.
    std::optional<QByteArray> statm = {};  ///< In place of the text that follows from the above.
    std::optional<QByteArray> status = {}; ///< The same.
};

/// Kernel files of a machine that a test makes up (proc(5)), below a root of its own.
class ProcTree {
public:
    ProcTree();

    std::string root() const { return m_tree.root(); }
    ProcessSource source() const { return linuxProcesses(root()); }
    void add(int pid, const FakeProcess &process);
    void addFolder(const QByteArray &name);
    void setSwap(std::uint64_t total, std::uint64_t free);
    void setMergingScans(const std::string &fullScans);
    void remove(int pid, const char *file);

    static std::uint64_t pageSize();

private:
    MachineTree m_tree;
};

} // namespace corvane::test
