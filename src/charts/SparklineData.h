#pragma once

#include <QColor>

#include <vector>

namespace corvane {

/// A closed range of seconds or of values; empty or backwards when `upper` is not above `lower`.
struct ChartRange {
    double lower = 0;
    double upper = 0;

    double span() const { return upper - lower; }
    double middle() const { return (lower + upper) * 0.5; }
    bool operator==(const ChartRange &) const = default;
};

/// Whether every series is measured from the bottom of the chart or stands on the sum of those
/// before it.
enum class Stacking { overlay, stacked };

/// One line of a chart. A value belongs to the timestamp of the same index.
struct SparklineSeries {
    std::vector<double> values = {}; ///< In the caller's unit.
    QColor lineColor = {};
    double lineWidth = 1;                ///< Points.
    std::vector<QColor> fillColors = {}; ///< From the chart's top edge to its bottom; one is flat.

    bool operator==(const SparklineSeries &) const = default;
};

/// What a chart shows. Series are drawn in their order; stacked, the first is the lowest.
struct SparklineData {
    std::vector<double> timestamps = {}; ///< Seconds since 2001, ascending, shared by all series.
    std::vector<SparklineSeries> series = {};
    ChartRange xDomain = {}; ///< Left to right edge, in seconds since 2001.
    ChartRange yDomain = {}; ///< Bottom to top edge.
    Stacking stacking = Stacking::overlay;
    bool showsGrid = true;
    bool showsTimeLabels = true;

    bool operator==(const SparklineData &) const = default;
};

} // namespace corvane
