#pragma once

#include "charts/SparklineData.h"

#include <QSizeF>

#include <optional>
#include <span>
#include <vector>

namespace corvane {

/// Maps time and value to points of a chart, whose origin is its top left corner. Arithmetic
/// without a widget.
struct ChartScale {
    ChartRange time = {};
    ChartRange value = {};
    QSizeF size = {};

    /// False if a range is empty, reversed or infinite; then no series is drawn.
    bool isUsable() const;

    /// Absent for NaN and for a time outside the range; both ends are inside.
    std::optional<double> xFor(double seconds) const;

    /// Clamped to the range. Not a number maps to the upper end, as in the core bars.
    double yFor(double amount) const;
};

/// The x of each sample; absent for a sample outside the time range, and for one that is later than
/// a following sample (the clock was set back), which would make a line run backwards.
std::vector<std::optional<double>> sampleColumns(std::span<const double> timestamps,
                                                 const ChartScale &scale);

/// Index of the sample nearest to `x` on a chart of that width; the older of two equally near ones.
/// Samples that are later than a following one are left out here too. Absent without width, time
/// range or samples.
std::optional<std::size_t> nearestIndex(std::span<const double> timestamps, const ChartRange &time,
                                        double x, double width);

/// Horizontal centre of a pill: at the cursor, but 4 points inside the edges; if it does not fit,
/// the right edge counts.
double clampedPillX(double x, double halfWidth, double plotWidth);

/// Vertical centre of a pill: its top is 2 points below that of the chart, its centre at least 4
/// points below it.
double pillY(double height);

} // namespace corvane
