#pragma once

#include "charts/SparklineData.h"
#include "records/SystemMetrics.h"

#include <vector>

namespace corvane {

/// The chart that every card begins with: the instants of the history, oldest first, on a domain
/// from the first to the last, and no series yet.
SparklineData historyChart(const std::vector<SystemMetrics> &history);

} // namespace corvane
