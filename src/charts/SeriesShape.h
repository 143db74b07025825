#pragma once

#include "charts/ChartScale.h"

#include <QPolygonF>

#include <vector>

namespace corvane {

/// Outline of an unbroken run of one series: its line, and the area between the line and its
/// baseline, which is the bottom of the chart or, stacked, the sum of the series before it.
struct SeriesShape {
    std::size_t series = 0; ///< Index of the series.
    QPolygonF line = {};
    QPolygonF fill = {}; ///< From the baseline up, along the line, back along the baseline.
};

/// The shapes of all series on a chart of that size, in the order of the series and of time; none
/// if the scale is unusable. Line and fill leave out the samples that have no place. A series
/// without a gap has one shape; an absent value ends a shape, and counts as 0 for the series that
/// is stacked on it.
std::vector<SeriesShape> seriesShapes(const SparklineData &data, const QSizeF &size);

/// The outlines of the unbroken runs of the band.
std::vector<QPolygonF> bandShapes(const SparklineData &data, const QSizeF &size);

} // namespace corvane
