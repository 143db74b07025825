#include "charts/SeriesShape.h"

#include <algorithm>

namespace corvane {

namespace {

SeriesShape shapeOf(const std::vector<double> &values,
                    const std::vector<std::optional<double>> &columns,
                    const std::vector<double> &baseline, const ChartScale &scale)
{
    SeriesShape shape;
    const std::size_t count = std::min(values.size(), columns.size());
    const auto points = static_cast<qsizetype>(count);
    shape.line.reserve(points);
    shape.fill.reserve(2 * points + 1);
    for (std::size_t i = 0; i < count; ++i) {
        if (!columns[i])
            continue;
        if (shape.line.isEmpty())
            shape.fill.append(QPointF(*columns[i], scale.yFor(baseline[i])));
        shape.line.append(QPointF(*columns[i], scale.yFor(values[i] + baseline[i])));
    }
    shape.fill += shape.line;
    for (std::size_t i = count; i-- > 0;) {
        if (columns[i])
            shape.fill.append(QPointF(*columns[i], scale.yFor(baseline[i])));
    }
    return shape;
}

} // namespace

std::vector<SeriesShape> seriesShapes(const SparklineData &data, const QSizeF &size)
{
    const ChartScale scale{data.xDomain, data.yDomain, size};
    if (!scale.isUsable() || data.timestamps.empty())
        return {};

    const std::vector<std::optional<double>> columns = sampleColumns(data.timestamps, scale);
    std::vector<double> baseline(data.timestamps.size(), data.yDomain.lower);
    std::vector<SeriesShape> shapes;
    shapes.reserve(data.series.size());
    for (const SparklineSeries &series : data.series) {
        shapes.push_back(shapeOf(series.values, columns, baseline, scale));
        if (data.stacking == Stacking::overlay)
            continue;
        const std::size_t count = std::min(baseline.size(), series.values.size());
        for (std::size_t i = 0; i < count; ++i)
            baseline[i] += series.values[i];
    }
    return shapes;
}

} // namespace corvane
