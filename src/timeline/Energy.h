#pragma once

#include "timeline/Measure.h"

#include <optional>

namespace corvane {

/// Joules, summed over the time in which the watts were known. A part whose watts were never known
/// has no sum. A plain value.
struct Energy {
    double seconds = 0; ///< In which watts of anything were known.
    double all = 0;
    std::optional<double> cpu = {};
    std::optional<double> gpu = {};
    std::optional<double> npu = {};

    Energy &operator+=(const Energy &other);
    friend bool operator==(const Energy &, const Energy &) = default;
};

/// The longest time between two samples for which energy is counted, in seconds.
inline constexpr double longestMeasuredStep = 5;

/// What these watts take in that time. In none, the parts whose watts are known have a sum of 0.
Energy energyOf(const Measures &measures, double seconds);

/// Seconds from one sample to the next as far as energy is counted for them: 0 for a longer
/// gap, such as sleep, and for a clock that ran backwards.
double measuredSeconds(double previous, double now);

} // namespace corvane
