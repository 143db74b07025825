#pragma once

#include "records/SystemMetrics.h"

#include <optional>
#include <vector>

namespace corvane {

/// At most `maxPoints` samples, evenly spaced by index, the first and the newest included; a copy
/// of the list if it is short enough. `maxPoints` must be at least 1 for a list that is not empty.
std::vector<SystemMetrics> chartDownsampled(const std::vector<SystemMetrics> &samples,
                                            int maxPoints);

/// The GPU state that was dominant most often in the newest `tail` samples; of several that were
/// equally often dominant the one that occurs first. Absent if no sample names a state.
std::optional<QString> dominantGPUState(const std::vector<SystemMetrics> &samples, int tail);

} // namespace corvane
