#pragma once

#include "cpu/CoreTicks.h"

#include <functional>
#include <optional>
#include <vector>

namespace corvane {

/// Turns cumulative tick counters into one utilisation a logical CPU for the time since the
/// previous call. Owned by the power sampler, used on its thread.
class CPUCoreSampler {
public:
    using TicksSource = std::function<std::optional<std::vector<CoreTicks>>()>;

    /// Samples this machine.
    CPUCoreSampler();
    explicit CPUCoreSampler(TicksSource ticks);

    /// Fractions 0…1 in processor order; nice time counts as busy. A CPU that is new, or whose
    /// counters stood still, reads 0. Empty when the counters cannot be read.
    std::vector<double> sample();

private:
    TicksSource m_ticks;
    std::vector<CoreTicks> m_previous;
};

} // namespace corvane
