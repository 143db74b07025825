#pragma once

#include <cstdint>
#include <optional>

namespace corvane {

/// How hard the system is pressed for memory, as the kernel itself judges it.
enum class MemoryPressure : std::uint8_t { normal, warning, critical };

/// Memory statistics of one tick, in bytes. A field whose source could not be read is 0 and the
/// pressure then is normal; readers guard against a total of 0.
struct MemorySnapshot {
    std::uint64_t total = 0; ///< Physical memory.
    std::uint64_t used = 0;  ///< Never more than total.
    std::uint64_t free = 0;
    std::uint64_t active = 0;
    std::uint64_t wired = 0;
    std::uint64_t compressed = 0; ///< Held by the compressor.
    std::uint64_t cached = 0;     ///< File-backed and purgeable; can be dropped.
    std::uint64_t appMemory = 0;  ///< Active + wired + compressed.
    std::uint64_t swapTotal = 0;
    std::uint64_t swapUsed = 0;
    MemoryPressure pressure = MemoryPressure::normal;

    // What tells how much a program may still take. Absent where the system does not say it.
    std::optional<std::uint64_t> available = {}; ///< Without swapping; Linux.
    std::optional<std::uint64_t> gpuLimit = {};  ///< Set for a Mac's GPU by an administrator.
    std::optional<std::uint64_t> gpuUsed = {};   ///< In use by a Mac's GPU.
};

/// Used share of the total, 0…100; 0 when the total is 0.
constexpr double usedPercent(const MemorySnapshot &memory)
{
    if (memory.total == 0)
        return 0;
    return static_cast<double>(memory.used) / static_cast<double>(memory.total) * 100;
}

} // namespace corvane
