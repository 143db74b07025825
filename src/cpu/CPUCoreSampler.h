#pragma once

#include "cpu/CoreTicks.h"
#include "threads/OneThread.h"

#include <functional>
#include <optional>
#include <vector>

namespace corvane {

/// Busy fraction 0…1 of each logical CPU between two readings of its counters, in processor order;
/// nice time counts as busy. A CPU that is new, or whose counters stood still, has 0.
std::vector<double> coreUtilizations(const std::vector<CoreTicks> &before,
                                     const std::vector<CoreTicks> &now);

/// Turns cumulative tick counters into one utilisation a logical CPU for the time since the
/// previous call. Owned by the power sampler; used on one thread.
class CPUCoreSampler {
public:
    /// Absent: the counters cannot be read.
    using TicksSource = std::function<std::optional<std::vector<CoreTicks>>()>;

    explicit CPUCoreSampler(TicksSource ticks);

    /// The utilisations; 0 for every CPU at the first call. Empty when the counters cannot be read:
    /// the next call then covers this interval too.
    std::vector<double> sample();

private:
    TicksSource m_ticks;
    std::vector<CoreTicks> m_previous = {};
    OneThread m_thread = {};
};

} // namespace corvane
