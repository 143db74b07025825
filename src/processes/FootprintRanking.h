#pragma once

#include "processes/ProcessRecord.h"

#include <functional>
#include <vector>

namespace corvane {

/// Bounds of a process's footprint in bytes, from one inexpensive read.
struct FootprintBounds {
    std::int32_t pid = 0;
    std::uint64_t least = 0;
    std::uint64_t most = 0;

    friend bool operator==(const FootprintBounds &, const FootprintBounds &) = default;
};

/// The footprint in bytes of a process whose bounds differ, by a second, more expensive read.
/// Absent when the process has ended.
using FootprintReader = std::function<std::optional<std::uint64_t>(const FootprintBounds &)>;

/// The footprint within `bounds`, read only where they differ; absent for a process that has ended
/// or holds nothing.
std::optional<std::uint64_t> exactFootprint(const FootprintBounds &bounds,
                                            const FootprintReader &read);

/// At most `limit` processes, largest first, equal ones by their number; without names. The same as
/// the ranking of all exact footprints, but reads only those that can belong to it. Pure.
std::vector<ProcessRecord> heaviestProcesses(std::vector<FootprintBounds> processes,
                                             std::size_t limit, const FootprintReader &read);

} // namespace corvane
