#pragma once

#include <cstdint>

namespace corvane {

/// Cumulative tick counters of one logical CPU, in the kernel's order. They wrap at 32 bits.
struct CoreTicks {
    std::uint32_t user = 0;
    std::uint32_t system = 0;
    std::uint32_t idle = 0;
    std::uint32_t nice = 0;

    friend bool operator==(const CoreTicks &, const CoreTicks &) = default;
};

} // namespace corvane
