#include "charts/SeriesShape.h"

#include <algorithm>
#include <limits>

namespace corvane {

namespace {

using Column = std::optional<double>;

/// Where each sample stands: nothing for one outside the time range, and for one that is later than
/// a following one, which would make the line run backwards.
std::vector<Column> columns(const std::vector<double> &timestamps, const ChartScale &scale)
{
    std::vector<Column> places(timestamps.size());
    double earliestFollowing = std::numeric_limits<double>::infinity();
    for (std::size_t i = timestamps.size(); i-- > 0;) {
        if (!(timestamps[i] <= earliestFollowing))
            continue;
        earliestFollowing = timestamps[i];
        places[i] = scale.xFor(timestamps[i]);
    }
    return places;
}

SeriesShape shapeOf(const std::vector<double> &values, const std::vector<Column> &places,
                    const std::vector<double> &baseline, const ChartScale &scale)
{
    SeriesShape shape;
    const std::size_t count = std::min(values.size(), places.size());
    shape.line.reserve(static_cast<qsizetype>(count));
    shape.fill.reserve(static_cast<qsizetype>(2 * count + 1));
    for (std::size_t i = 0; i < count; ++i) {
        if (!places[i])
            continue;
        if (shape.line.isEmpty())
            shape.fill.append(QPointF(*places[i], scale.yFor(baseline[i])));
        shape.line.append(QPointF(*places[i], scale.yFor(values[i] + baseline[i])));
    }
    shape.fill += shape.line;
    for (std::size_t i = count; i-- > 0;) {
        if (places[i])
            shape.fill.append(QPointF(*places[i], scale.yFor(baseline[i])));
    }
    return shape;
}

} // namespace

std::vector<SeriesShape> seriesShapes(const SparklineData &data, const QSizeF &size)
{
    const ChartScale scale{data.xDomain, data.yDomain, size};
    if (!scale.isUsable() || data.timestamps.empty())
        return {};

    const std::vector<Column> places = columns(data.timestamps, scale);
    std::vector<double> baseline(data.timestamps.size(), data.yDomain.lower);
    std::vector<SeriesShape> shapes;
    shapes.reserve(data.series.size());
    for (const SparklineSeries &series : data.series) {
        shapes.push_back(shapeOf(series.values, places, baseline, scale));
        if (data.stacking == Stacking::overlay)
            continue;
        const std::size_t count = std::min(baseline.size(), series.values.size());
        for (std::size_t i = 0; i < count; ++i)
            baseline[i] += series.values[i];
    }
    return shapes;
}

} // namespace corvane
