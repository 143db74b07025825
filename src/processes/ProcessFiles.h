#pragma once

#include "processes/FootprintRanking.h"

#include <string>
#include <string_view>

namespace corvane {

// Pure functions over the text of Linux's per-process files (proc(5)). What does not parse is
// absent.

/// How much more than its resident memory a process may hold.
struct SwapLimits {
    std::uint64_t inUse = 0;  ///< Swap in use on the whole machine, in bytes.
    bool pagesMerged = false; ///< One page in swap may stand for many of a process.
};

/// Swap in use according to /proc/meminfo, in bytes; 0 when it is not given there.
std::uint64_t parseSwapInUse(std::string_view memInfo);

/// Footprint of a process according to its `statm`, a line of counts in pages: at least its
/// resident memory that is not shared, at most what can be swapped out on top of that. Absent for
/// ended processes and for the kernel's own.
std::optional<FootprintBounds> parseStatm(std::int32_t pid, std::string_view statm,
                                          std::uint64_t pageSize, const SwapLimits &swap);

/// Swapped-out memory according to `status`, in bytes; absent when the process has ended.
std::optional<std::uint64_t> parseSwapped(std::string_view status);

/// When a process was started according to `stat`, in clock ticks since the machine's start. Its
/// name stands there in parentheses and may hold any byte, parentheses too.
std::optional<std::uint64_t> parseStartTime(std::string_view stat);

/// The parent of a process according to `stat`.
std::optional<std::int32_t> parseParent(std::string_view stat);

/// Whether a name from `comm` has the length to which the kernel cuts names.
bool mayBeCut(std::string_view name);

/// The name in `comm` without the line end.
std::string_view parseProcessName(std::string_view comm);

/// The path in an `exe` link without the kernel's mark for a file that was replaced or removed.
std::string_view executablePath(std::string_view link);

/// A cut name, completed from the executable's file name if that begins with it.
std::string_view completedName(std::string_view name, std::string_view executable);

} // namespace corvane
