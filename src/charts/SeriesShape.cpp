#include "charts/SeriesShape.h"

#include <algorithm>

namespace corvane {

namespace {

using Values = std::vector<std::optional<double>>;

/// The samples from `first` to before `end`, all of which have a value.
struct Run {
    std::size_t first = 0;
    std::size_t end = 0;
};

template <typename Value>
std::vector<Run> unbrokenRuns(const std::vector<std::optional<Value>> &values, std::size_t count)
{
    std::vector<Run> runs;
    for (std::size_t i = 0; i < count; ++i) {
        if (!values[i])
            continue;
        if (runs.empty() || runs.back().end != i)
            runs.push_back({i, i});
        ++runs.back().end;
    }
    return runs;
}

SeriesShape shapeOf(const Values &values, const Run &run,
                    const std::vector<std::optional<double>> &columns,
                    const std::vector<double> &baseline, const ChartScale &scale)
{
    SeriesShape shape;
    const auto points = static_cast<qsizetype>(run.end - run.first);
    shape.line.reserve(points);
    shape.fill.reserve(2 * points + 1);
    for (std::size_t i = run.first; i < run.end; ++i) {
        if (!columns[i])
            continue;
        if (shape.line.isEmpty())
            shape.fill.append(QPointF(*columns[i], scale.yFor(baseline[i])));
        shape.line.append(QPointF(*columns[i], scale.yFor(*values[i] + baseline[i])));
    }
    shape.fill += shape.line;
    for (std::size_t i = run.end; i-- > run.first;) {
        if (columns[i])
            shape.fill.append(QPointF(*columns[i], scale.yFor(baseline[i])));
    }
    return shape;
}

/// A value between two gaps is drawn as a line of one point's width.
void widenDot(SeriesShape &shape)
{
    constexpr double half = 0.5;
    const QPointF dot = shape.line.front();
    const double bottom = shape.fill.front().y();
    shape.line = {{dot.x() - half, dot.y()}, {dot.x() + half, dot.y()}};
    shape.fill = {{dot.x() - half, bottom}};
    shape.fill += shape.line;
    shape.fill += {{dot.x() + half, bottom}, {dot.x() - half, bottom}};
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
    for (std::size_t index = 0; index < data.series.size(); ++index) {
        const Values &values = data.series[index].values;
        const std::size_t count = std::min(baseline.size(), values.size());
        const std::vector<Run> runs = unbrokenRuns(values, count);
        for (const Run &run : runs) {
            SeriesShape shape = shapeOf(values, run, columns, baseline, scale);
            shape.series = index;
            if ((runs.size() > 1 || data.showsMeans) && shape.line.size() == 1)
                widenDot(shape);
            shapes.push_back(std::move(shape));
        }
        if (data.stacking == Stacking::overlay)
            continue;
        for (std::size_t i = 0; i < count; ++i)
            baseline[i] += values[i].value_or(0);
    }
    return shapes;
}

std::vector<QPolygonF> bandShapes(const SparklineData &data, const QSizeF &size)
{
    constexpr double half = 0.5; // A range between two gaps is as wide as a dot.
    const ChartScale scale{data.xDomain, data.yDomain, size};
    if (!scale.isUsable())
        return {};
    const std::vector<std::optional<double>> columns = sampleColumns(data.timestamps, scale);
    std::vector<QPolygonF> shapes;
    for (const Run &run : unbrokenRuns(data.band, std::min(data.band.size(), columns.size()))) {
        QPolygonF shape;
        const double margin = run.end == run.first + 1 ? half : 0;
        for (std::size_t i = run.first; i < run.end; ++i) {
            if (columns[i])
                shape.append(QPointF(*columns[i] - margin, scale.yFor(data.band[i]->upper)));
        }
        for (std::size_t i = run.end; margin > 0 && i-- > run.first;) {
            if (columns[i])
                shape.append(QPointF(*columns[i] + margin, scale.yFor(data.band[i]->upper)));
        }
        for (std::size_t i = run.end; i-- > run.first;) {
            if (columns[i])
                shape.append(QPointF(*columns[i] + margin, scale.yFor(data.band[i]->lower)));
        }
        for (std::size_t i = run.first; margin > 0 && i < run.end; ++i) {
            if (columns[i])
                shape.append(QPointF(*columns[i] - margin, scale.yFor(data.band[i]->lower)));
        }
        shapes.push_back(std::move(shape));
    }
    return shapes;
}

} // namespace corvane
