#pragma once

#include "memory/MemoryCounters.h"

#include <string_view>

namespace corvane {

/// The kernel texts from which Linux's memory counters are made. Text that could not be read is
/// absent.
struct ProcMemoryTexts {
    std::optional<std::string_view> memInfo = {};  ///< /proc/meminfo
    std::optional<std::string_view> pressure = {}; ///< /proc/pressure/memory
    std::optional<std::string_view> arcStats = {}; ///< /proc/spl/kstat/zfs/arcstats
    std::uint64_t zramBytes = 0;                   ///< Memory used by compressed RAM disks.
};

/// The counts for the shared arithmetic, in KiB (a page size of 1024). Wired is all of the
/// machine's memory that no other count covers, so that GPU buffers, kernel and driver pages, huge
/// pages and locked memory count as used. Pure.
MemoryCounters memoryCounters(const ProcMemoryTexts &texts);

/// Memory used by one compressed RAM disk in bytes, from its `mm_stat`; 0 when that is unreadable.
std::uint64_t zramMemory(std::string_view mmStat);

} // namespace corvane
