#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace corvane {

/// What one cheap look tells of a process's footprint, in bytes: it lies between these.
struct FootprintBounds {
    std::int32_t pid = 0;
    std::uint64_t least = 0;
    std::uint64_t most = 0;

    friend bool operator==(const FootprintBounds &, const FootprintBounds &) = default;
};

/// A process and its footprint in bytes.
struct ProcessFootprint {
    std::int32_t pid = 0;
    std::uint64_t memory = 0;

    friend bool operator==(const ProcessFootprint &, const ProcessFootprint &) = default;
};

/// The footprint of a process whose bounds differ, by a dearer look; nothing when it has ended.
using FootprintReader = std::function<std::optional<std::uint64_t>(const FootprintBounds &)>;

/// The footprint within `bounds`, read where it must be; nothing for a process that holds nothing.
std::optional<ProcessFootprint> exactFootprint(const FootprintBounds &bounds,
                                               const FootprintReader &read);

/// At most `limit` processes, largest first, equal ones by their number: the very ranking of all
/// exact footprints, reading only those that may belong to it. Pure.
std::vector<ProcessFootprint> heaviestFootprints(std::vector<FootprintBounds> processes,
                                                 std::size_t limit, const FootprintReader &read);

} // namespace corvane
