#pragma once

#include "charts/SparklineData.h"

namespace corvane {

/// The chart with at most one point in each of `columns` columns of equal width: neighbours in a
/// column become their mean, which keeps stacked series on each other, in a band that holds all of
/// theirs. A point without any value, which makes a gap, stays by itself.
SparklineData reducedToColumns(const SparklineData &chart, int columns);

} // namespace corvane
