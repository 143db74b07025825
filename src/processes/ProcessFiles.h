#pragma once

#include "processes/FootprintRanking.h"

#include <string>
#include <string_view>

namespace corvane {

/// Pure functions over the text of Linux's per-process files (proc(5)). What does not parse is
/// nothing.

/// Why a process may hold more than its resident memory.
struct SwapLimits {
    std::uint64_t inUse = 0;  ///< Swap in use on the whole machine, in bytes.
    bool pagesMerged = false; ///< One page in swap may stand for many of a process.
};

/// Swap in use by /proc/meminfo, in bytes; 0 when it does not tell.
std::uint64_t parseSwapInUse(std::string_view memInfo);

/// Footprint of the process by its `statm`, a line of counts in pages: memory of its own that is
/// resident, and at most as much on top as can be swapped out. Ended processes and the kernel's
/// own have none.
std::optional<FootprintBounds> parseStatm(std::int32_t pid, std::string_view statm,
                                          std::uint64_t pageSize, const SwapLimits &swap);

/// Swapped-out memory by `status`, in bytes; nothing when the process has ended.
std::optional<std::uint64_t> parseSwapped(std::string_view status);

/// Whether the kernel may have cut this name of `comm`.
bool mayBeCut(std::string_view name);

/// The name of `comm` without its line end.
std::string_view parseProcessName(std::string_view comm);

/// The path in an `exe` link without the mark that the file was replaced or removed.
std::string_view executablePath(std::string_view link);

/// A cut name, completed from the executable's file name if that begins with it.
std::string_view completedName(std::string_view name, std::string_view executable);

} // namespace corvane
