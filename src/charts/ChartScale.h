#pragma once

#include "charts/SparklineData.h"

#include <QSizeF>

#include <optional>
#include <span>
#include <vector>

namespace corvane {

/// Maps time and value to points of a chart, with the origin at its top left. Plain arithmetic
/// without a widget.
struct ChartScale {
    ChartRange time = {};
    ChartRange value = {};
    QSizeF size = {};

    /// Whether there is anything to map: no series is drawn on an empty, backwards or
    /// infinite range.
    bool isUsable() const;

    /// Nothing for a time outside the range (both ends belong to it) or one that is not a number.
    std::optional<double> xFor(double seconds) const;

    /// Pinned to the range. What is not a number comes out at the upper end, as in the core bars.
    double yFor(double amount) const;
};

/// Where each sample stands: nothing for one outside the time range, and for one that is later than
/// a following one (the clock was set back behind it), which would make a line run backwards.
std::vector<std::optional<double>> sampleColumns(std::span<const double> timestamps,
                                                 const ChartScale &scale);

/// Index of the sample nearest to `x` on a chart of that width; of two equally near ones the older.
/// A sample that is later than a following one is passed over here too.
/// Nothing without width, time range or samples.
std::optional<std::size_t> nearestIndex(std::span<const double> timestamps, const ChartRange &time,
                                        double x, double width);

/// Horizontal centre of a pill: at the cursor, but 4 points inside either edge; the right one wins.
double clampedPillX(double x, double halfWidth, double plotWidth);

/// Vertical centre of a pill: it hangs 2 points below the top edge, its centre never above 4.
double pillY(double height);

} // namespace corvane
