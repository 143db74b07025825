#pragma once

#include "charts/ChartScale.h"

#include <QPolygonF>

#include <vector>

namespace corvane {

/// Outline of one series: its line, and the area between the line and what the series stands on.
struct SeriesShape {
    QPolygonF line = {};
    QPolygonF fill = {}; ///< Up from the baseline, along the line, back along the baseline.
};

/// The shapes of all series on a chart of that size, in the order of the series; none where the
/// scale is unusable. Samples without a point are left out of line and fill alike.
std::vector<SeriesShape> seriesShapes(const SparklineData &data, const QSizeF &size);

} // namespace corvane
