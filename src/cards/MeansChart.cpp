#include "cards/MeansChart.h"

#include "charts/HoverTime.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

constexpr double anHour = 3'600;

} // namespace

MeansChart::MeansChart(const MeanWindow &window) : m_window(window)
{
    constexpr double tolerance = 0.5; // Seconds.
    for (const MeanRecord &record : window.records) {
        if (!m_timestamps.empty() && record.start > m_timestamps.back() + tolerance) {
            m_timestamps.push_back(record.start);
            m_points.push_back(nullptr);
        }
        m_timestamps.push_back(record.end());
        m_points.push_back(&record);
    }
}

SparklineData MeansChart::chart() const
{
    return {
        .timestamps = m_timestamps, .xDomain = {m_window.begin, m_window.end}, .showsMeans = true};
}

template <typename Value, typename Convert>
std::vector<std::optional<Value>> MeansChart::values(Measure measure, Convert convert) const
{
    std::vector<std::optional<Value>> values;
    values.reserve(m_points.size());
    for (const MeanRecord *point : m_points) {
        const bool isKnown = point && (*point)[measure].known > 0;
        values.push_back(isKnown ? std::optional<Value>(convert((*point)[measure])) : std::nullopt);
    }
    return values;
}

std::vector<std::optional<double>> MeansChart::means(Measure measure,
                                                     const Conversion &conversion) const
{
    return values<double>(measure, [&conversion](const Mean &mean) {
        const auto value = static_cast<double>(mean.mean);
        return conversion ? conversion(value) : value;
    });
}

std::vector<std::optional<ChartRange>> MeansChart::ranges(Measure measure,
                                                          const Conversion &conversion) const
{
    return values<ChartRange>(measure, [&conversion](const Mean &mean) {
        const ChartRange range{static_cast<double>(mean.least), static_cast<double>(mean.greatest)};
        return conversion ? ChartRange{conversion(range.lower), conversion(range.upper)} : range;
    });
}

SparklineData MeansChart::loadChart(Measure measure, const QColor &color,
                                    const Conversion &conversion) const
{
    SparklineData data = chart();
    data.series.push_back({.values = means(measure, conversion),
                           .lineColor = color,
                           .lineWidth = 1,
                           .fillColors = {Theme::withOpacity(color, 0.55)}});
    data.yDomain = {0, 100};
    data.band = ranges(measure, conversion);
    data.bandColor = Theme::withOpacity(color, bandOpacity);
    return data;
}

QString meanTime(const SparklineData &chart, std::size_t index)
{
    const double time = chart.timestamps[index];
    return chart.xDomain.span() > anHour ? HoverTime::minute(time) : HoverTime::string(time);
}

PillContent loadPill(const SparklineData &chart, std::size_t index, const QColor &color)
{
    return {meanTime(chart, index),
            {valuesRow({percentText(chart.series.front().values[index])}, color),
             componentRow(u"range"_s, rangeText(chart, index, 0, u"%"_s), color)}};
}

QString rangeText(const SparklineData &chart, std::size_t index, int fractionDigits,
                  const QString &unit)
{
    const std::optional<ChartRange> range = chart.band[index];
    if (!range)
        return u"\u2013"_s;
    return fixedText(range->lower, fractionDigits) + u'\u2013'
        + fixedText(range->upper, fractionDigits) + unit;
}

} // namespace corvane
