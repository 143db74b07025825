#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace corvane {

/// Cumulative tick counters of one logical CPU, in the kernel's order. They wrap at 32 bits.
struct CoreTicks {
    std::uint32_t user = 0;
    std::uint32_t system = 0;
    std::uint32_t idle = 0;
    std::uint32_t nice = 0;

    friend bool operator==(const CoreTicks &, const CoreTicks &) = default;
};

/// The counters of all logical CPUs of this Mac, in processor order; absent when they cannot be
/// read. On a Mac alone. Any thread.
std::optional<std::vector<CoreTicks>> readCoreTicks();

} // namespace corvane
