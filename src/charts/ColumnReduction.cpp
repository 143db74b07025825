#include "charts/ColumnReduction.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

bool hasValue(const SparklineData &chart, std::size_t point)
{
    return std::ranges::any_of(chart.series, [point](const SparklineSeries &series) {
        return point < series.values.size() && series.values[point].has_value();
    });
}

/// Mean of the known values from `first` to before `end`.
std::optional<double> meanOf(const std::vector<std::optional<double>> &values, std::size_t first,
                             std::size_t end)
{
    double sum = 0;
    int known = 0;
    for (std::size_t i = first; i < std::min(end, values.size()); ++i) {
        sum += values[i].value_or(0);
        known += values[i] ? 1 : 0;
    }
    return known > 0 ? std::optional(sum / known) : std::nullopt;
}

std::optional<ChartRange> unionOf(const std::vector<std::optional<ChartRange>> &band,
                                  std::size_t first, std::size_t end)
{
    std::optional<ChartRange> whole;
    for (std::size_t i = first; i < std::min(end, band.size()); ++i) {
        if (!band[i])
            continue;
        whole = whole ? ChartRange{std::min(whole->lower, band[i]->lower),
                                   std::max(whole->upper, band[i]->upper)}
                      : *band[i];
    }
    return whole;
}

} // namespace

SparklineData reducedToColumns(const SparklineData &chart, int columns)
{
    const std::size_t count = chart.timestamps.size();
    if (columns < 1 || !(chart.xDomain.span() > 0) || count <= static_cast<std::size_t>(columns))
        return chart;
    const auto columnOf = [&chart, columns](std::size_t point) {
        const double part = (chart.timestamps[point] - chart.xDomain.lower) / chart.xDomain.span();
        return std::floor(part * columns);
    };

    SparklineData reduced = chart;
    reduced.timestamps.clear();
    reduced.band.clear();
    for (SparklineSeries &series : reduced.series)
        series.values.clear();
    std::size_t end = 0;
    for (std::size_t first = 0; first < count; first = end) {
        end = first + 1;
        while (end < count && hasValue(chart, first) && hasValue(chart, end)
               && columnOf(end) == columnOf(first))
            ++end;
        reduced.timestamps.push_back(chart.timestamps[end - 1]);
        for (std::size_t i = 0; i < chart.series.size(); ++i)
            reduced.series[i].values.push_back(meanOf(chart.series[i].values, first, end));
        if (!chart.band.empty())
            reduced.band.push_back(unionOf(chart.band, first, end));
    }
    return reduced;
}

} // namespace corvane
