#pragma once

#include "charts/SparklineData.h"
#include "records/SystemMetrics.h"

#include <vector>

namespace corvane {

/// A chart with the timestamps of the history (oldest first), an x domain from the first to the
/// last of them, and no series. The cards add theirs.
SparklineData historyChart(const std::vector<SystemMetrics> &history);

} // namespace corvane
