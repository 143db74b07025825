#pragma once

#include "processes/ProcessSource.h"

#include <limits>

namespace corvane {

/// Which records of a ranking need their name, which costs system calls of its own: the first few,
/// and heavy ones at any place. By default all.
struct NamesWanted {
    std::size_t first = std::numeric_limits<std::size_t>::max();
    std::uint64_t fromMemory = 0; ///< In bytes.
};

/// The heaviest processes, largest first and at most `limit` of them.
using ProcessRanking = std::function<std::vector<ProcessRecord>(std::int32_t limit)>;

/// Lists the processes that the user may inspect. Keeps no state; safe from any thread. What
/// cannot be read is left out; a process without a readable name is called "pid 123".
class ProcessBridge {
public:
    /// All processes that hold memory, in the order in which the kernel lists them.
    static std::vector<ProcessRecord> allProcesses(
        const ProcessSource &source = ProcessSource::system());

    /// The heaviest of them, largest first, and those of `also` that are none of these, with their
    /// names.
    static std::vector<ProcessRecord> topProcessesByMemory(
        std::int32_t limit, const NamesWanted &names = {},
        const ProcessSource &source = ProcessSource::system(),
        const std::vector<std::int32_t> &also = {});

    /// What the process is called; "pid 123" without a readable name.
    static std::string nameOf(std::int32_t pid, const ProcessSource &source);

    /// Executable and arguments of one process; absent when they cannot be read.
    static std::optional<ArgumentRecord> processArgsForPID(
        std::int32_t pid, const ProcessSource &source = ProcessSource::system());

    /// The ranking as a function.
    static ProcessRanking ranking(const NamesWanted &names = {},
                                  const ProcessSource &source = ProcessSource::system());
};

} // namespace corvane
