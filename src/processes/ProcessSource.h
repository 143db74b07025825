#pragma once

#include "processes/ArgumentBlock.h"
#include "processes/FootprintRanking.h"
#include "processes/ProcessIdentity.h"

namespace corvane {

/// Reads processes from one system. A source may keep files open from listing to listing, as
/// long as a copy of it exists. Safe from any thread.
struct ProcessSource {
    /// The processes in the kernel's order, each once. Those that hold no memory or may not be
    /// inspected are left out.
    std::function<std::vector<FootprintBounds>()> footprints;

    /// The footprint of a process whose bounds differ.
    FootprintReader footprint;

    /// The system's short name for a process, as bytes; absent when it has none.
    std::function<std::optional<std::string>(std::int32_t pid)> name;

    /// Who has a number now, from an inexpensive read.
    IdentityReader identity;

    /// Executable and arguments of a process with a positive number; absent when they cannot be
    /// read. The call may never return: its answer can depend on what the process waits for.
    ArgumentReader arguments;

    /// The process that started it, or that took it over; absent when that is not known.
    std::function<std::optional<std::int32_t>(std::int32_t pid)> parent = {};

    /// The working folder; absent when it cannot be read, as of other users' processes.
    std::function<std::optional<std::string>(std::int32_t pid)> folder = {};

    /// Closes what was kept open for the next listing. Empty: nothing is kept.
    std::function<void()> rest = {};

    /// The system that the program runs on.
    static ProcessSource system();
};

} // namespace corvane
