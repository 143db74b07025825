#pragma once

#include "processes/ArgumentBlock.h"
#include "processes/FootprintRanking.h"

#include <limits>

namespace corvane {

/// What the system tells of one process.
struct ProcessRecord {
    std::optional<std::int32_t> pid = {};
    std::optional<std::string> name = {};     ///< UTF-8; "pid 123" when the system has none.
    std::optional<std::uint64_t> memory = {}; ///< Physical footprint in bytes.

    friend bool operator==(const ProcessRecord &, const ProcessRecord &) = default;
};

/// Which records of a ranking need their name, which costs system calls of its own: the first few,
/// and heavy ones wherever they stand. By default all.
struct NamesWanted {
    std::size_t first = std::numeric_limits<std::size_t>::max();
    std::uint64_t fromMemory = 0; ///< In bytes.
};

/// Lists the processes that the user may inspect. Keeps no state; safe from any thread. What
/// cannot be read is left out. `root` is the folder below which kernel files lie (Linux).
class ProcessBridge {
public:
    /// All processes that hold memory, in the order in which the kernel lists them.
    static std::vector<ProcessRecord> allProcesses(const std::string &root = "/");

    /// The heaviest of them, largest first.
    static std::vector<ProcessRecord> topProcessesByMemory(std::int32_t limit,
                                                           const std::string &root = "/",
                                                           const NamesWanted &names = {});

    /// Executable and arguments of one process; nothing when they cannot be read.
    static std::optional<ArgumentRecord> processArgsForPID(std::int32_t pid,
                                                           const std::string &root = "/");

private:
    /// The processes in the kernel's order, each once, without those that hold nothing.
    static std::vector<FootprintBounds> listFootprints(const std::string &root);

    /// The footprint of one whose bounds differ.
    static std::optional<std::uint64_t> readFootprint(const FootprintBounds &bounds,
                                                      const std::string &root);

    /// The system's short name for the process, as bytes.
    static std::optional<std::string> readName(std::int32_t pid, const std::string &root);

    static std::string name(std::int32_t pid, const std::string &root);
    static FootprintReader footprintReader(const std::string &root);
};

} // namespace corvane
