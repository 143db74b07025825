#pragma once

#include <cstdint>
#include <optional>

namespace corvane {

/// What one read of the system's memory statistics yields, before any arithmetic. The page counts
/// are in units of `pageSize` bytes and come together or not at all.
struct MemoryCounters {
    struct Pages {
        std::uint64_t free = 0;
        std::uint64_t active = 0;
        std::uint64_t inactive = 0;
        std::uint64_t wired = 0;
        std::uint64_t compressor = 0; ///< Held by the compressor.
        std::uint64_t purgeable = 0;
        std::uint64_t external = 0; ///< File-backed.
    };
    struct Swap {
        std::uint64_t total = 0; ///< Bytes.
        std::uint64_t used = 0;  ///< Bytes.
    };

    std::optional<std::uint64_t> totalBytes = {};
    std::uint64_t pageSize = 0; ///< 0: unknown, which makes every size from pages 0.
    std::optional<Pages> pages = {};
    std::optional<Swap> swap = {};
    std::optional<std::int32_t> pressureLevel = {};   ///< 1 normal, 2 warning, 4 critical.
    std::optional<std::uint64_t> availableBytes = {}; ///< Programs can take them without swapping.
    std::optional<std::uint64_t> gpuLimitBytes = {};  ///< That a Mac's GPU may use; else the usual.
    std::optional<std::uint64_t> gpuUsedBytes = {};   ///< That a Mac's GPU has in use.
};

/// The counters of this machine now, for one thread: that of `MemorySampler`. A statistic that
/// cannot be read is absent.
MemoryCounters readMemoryCounters();

} // namespace corvane
