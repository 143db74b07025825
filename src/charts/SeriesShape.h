#pragma once

#include "charts/ChartScale.h"

#include <QPolygonF>

#include <vector>

namespace corvane {

/// Outline of one series: its line, and the area between the line and its baseline, which is the
/// bottom of the chart or, stacked, the sum of the series before it.
struct SeriesShape {
    QPolygonF line = {};
    QPolygonF fill = {}; ///< From the baseline up, along the line, back along the baseline.
};

/// The shapes of all series on a chart of that size, in the order of the series; none if the scale
/// is unusable. Line and fill leave out the samples that have no place.
std::vector<SeriesShape> seriesShapes(const SparklineData &data, const QSizeF &size);

} // namespace corvane
