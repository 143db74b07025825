#pragma once

#include <QColor>

#include <optional>
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

/// Whether every series starts at the bottom of the chart or on the sum of those before it.
enum class Stacking { overlay, stacked };

/// One line of a chart. A value belongs to the timestamp of the same index.
struct SparklineSeries {
    /// In the unit of `yDomain`; absent where nothing was known: line and fill have a gap there.
    std::vector<std::optional<double>> values = {};
    QColor lineColor = {};
    double lineWidth = 1;                ///< Points.
    std::vector<QColor> fillColors = {}; ///< From the top edge of the chart to its bottom.

    bool operator==(const SparklineSeries &) const = default;
};

/// What a chart shows. Series are drawn in order; the first of stacked series is the lowest.
struct SparklineData {
    std::vector<double> timestamps = {}; ///< Seconds since 2001, ascending, shared by all series.
    std::vector<SparklineSeries> series = {};
    ChartRange xDomain = {}; ///< From the left to the right edge, in seconds since 2001.
    ChartRange yDomain = {}; ///< From the bottom to the top edge.
    Stacking stacking = Stacking::overlay;
    bool showsGrid = true;
    bool showsTimeLabels = true;

    /// Means over spans of time: at most one point is drawn in a pixel column, and time labels name
    /// the weekday where a midnight lies within.
    bool showsMeans = false;

    /// From the smallest to the largest value at each timestamp, behind the series; absent where
    /// nothing was known. May be empty.
    std::vector<std::optional<ChartRange>> band = {};
    QColor bandColor = {};

    bool operator==(const SparklineData &) const = default;
};

} // namespace corvane
