#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// How long the engines of one class worked for a client. The counters grow; some drivers' step
/// back at times.
struct DrmEngine {
    std::string name = {};                   ///< "gfx", "render", "rcs"
    std::optional<std::uint64_t> busy = {};  ///< Nanoseconds, or cycles where `total` is there.
    std::optional<std::uint64_t> total = {}; ///< Cycles that passed.
    std::optional<double> share = {};        ///< 0…1, where a driver tells it directly.
    std::uint64_t capacity = 1;              ///< Engines of the class; at least 1.
};

/// Memory that a client has in one region.
struct DrmRegion {
    std::string name = {}; ///< "vram", "gtt", "system0"
    std::uint64_t bytes = 0;
};

/// One client of a GPU driver, as the kernel tells of the descriptor that it opened. A client may
/// have several descriptors, in several processes.
struct DrmClient {
    std::string address = {}; ///< Of the GPU on the PCI bus; never empty.
    std::string id = {}; ///< Identifies the client on that GPU; empty with drivers before 5.19.
    std::vector<DrmEngine> engines = {};
    std::vector<DrmRegion> regions = {};
};

// Pure functions.

/// Reads `/proc/PID/fdinfo/FD` (the kernel's document "drm-usage-stats"); also the form of amdgpu
/// until 5.18. Absent for a descriptor of something else. A value that does not parse is left out;
/// the first of several values for the same thing counts.
std::optional<DrmClient> parseDrmClient(std::string_view fdinfo);

/// What the client has of the GPU's memory: of the card's own, on an integrated GPU of the
/// machine's as well. Absent when the driver tells of no such region.
std::optional<std::uint64_t> drmClientBytes(const DrmClient &client, bool integrated);

} // namespace corvane
