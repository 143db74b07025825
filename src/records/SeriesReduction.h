#pragma once

#include "records/SystemMetrics.h"

#include <optional>
#include <vector>

namespace corvane {

/// At most `maxPoints` samples, evenly spaced by index, first and newest included; the list itself
/// when it is short enough. `maxPoints` must be at least 1 for a list that is not empty.
std::vector<SystemMetrics> chartDownsampled(const std::vector<SystemMetrics> &samples,
                                            int maxPoints);

/// The GPU state that was dominant most often in the newest `tail` samples; among equals the one
/// that was seen first. Nothing when none of them names a state.
std::optional<QString> dominantGPUState(const std::vector<SystemMetrics> &samples, int tail);

} // namespace corvane
