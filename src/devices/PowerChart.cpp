#include "devices/PowerChart.h"

#include "cards/HistoryChart.h"
#include "cards/MeansChart.h"
#include "charts/HoverTime.h"
#include "charts/Sparkline.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

using Values = std::vector<std::vector<PowerValue>>;

Values valuesOf(const std::vector<SystemMetrics> &history, const std::vector<PowerPart> &parts,
                const MachineCoverage &machine)
{
    Values values;
    values.reserve(history.size());
    for (const SystemMetrics &sample : history)
        values.push_back(powerValues(parts, sample, machine));
    return values;
}

/// Mean total of the known samples among those from `first` to `last`.
std::optional<double> meanTotal(const Values &values, std::size_t first, std::size_t last)
{
    std::vector<double> sums(values[first].size());
    int samples = 0;
    for (std::size_t near = first; near <= last; ++near) {
        bool isKnown = false;
        for (std::size_t part = 0; part < sums.size(); ++part) {
            isKnown |= values[near][part].watts.has_value();
            sums[part] += values[near][part].watts.value_or(0);
        }
        samples += isKnown ? 1 : 0;
    }
    if (samples == 0)
        return std::nullopt;
    double total = 0;
    for (const double sum : sums)
        total += sum / samples;
    return total;
}

std::optional<double> peakOf(const Values &values)
{
    std::optional<double> peak;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t first = i > 0 ? i - 1 : 0;
        const std::size_t last = std::min(i + 1, values.size() - 1);
        if (const std::optional<double> total = meanTotal(values, first, last))
            peak = std::max(peak.value_or(0), *total);
    }
    return peak;
}

bool isAlwaysDenied(const Values &values)
{
    return !values.empty()
        && std::ranges::all_of(values, [](const std::vector<PowerValue> &sample) {
               return std::ranges::any_of(sample, &PowerValue::isDenied);
           });
}

const MachineCoverage &newestCoverage(const std::vector<SystemMetrics> &history)
{
    return coverageOf(history.empty() ? SystemMetrics::placeholder() : history.back());
}

} // namespace

double peakTotal(const std::vector<SystemMetrics> &history)
{
    const MachineCoverage &machine = newestCoverage(history);
    return peakOf(valuesOf(history, powerParts(machine), machine)).value_or(0);
}

double powerScale(double peak)
{
    const double room = peak * 1.18;
    if (room < 5)
        return 5;
    if (room < 10)
        return 10;
    const double step = room < 25 ? 5 : room < 100 ? 10 : 25;
    return std::ceil(room / step) * step;
}

PowerChart::PowerChart(QWidget *card) : m_chart(new Sparkline(card))
{
    m_chart->setHoverPill([this](std::size_t index) { return pill(index); });
}

void PowerChart::show(const ChartHistory &history, const MachineCoverage &machine)
{
    if (history.means)
        showMeans(*history.means, machine);
    else
        showSamples(history.recent, machine);
}

void PowerChart::showSamples(const std::vector<SystemMetrics> &history,
                             const MachineCoverage &machine)
{
    m_shownMeans.reset();
    m_parts = powerParts(machine);
    m_values = valuesOf(history, m_parts, machine);
    m_peak = peakOf(m_values);
    m_stableYMax = std::max(m_stableYMax, powerScale(m_peak.value_or(0)));
    if (isAlwaysDenied(m_values))
        m_peak.reset();
    else if (machine.isWhole)
        m_peak = m_peak.value_or(0); // A whole chip has no history yet.
    showSeries(historyChart(history), m_stableYMax);
}

/// Means stack as samples do. The band is that of their sum, and its greatest value the peak, which
/// sets the scale of this window alone: a night under load must not flatten the minute after it.
void PowerChart::showMeans(const MeanWindow &window, const MachineCoverage &machine)
{
    std::vector<PowerPart> parts = powerParts(machine);
    if (m_shownMeans == window.key() && parts == m_parts)
        return;
    m_shownMeans = window.key();
    m_parts = std::move(parts);
    const MeansChart means(window);
    SparklineData chart = means.chart();
    chart.band = means.ranges(Measure::totalWatts);
    chart.bandColor = Theme::withOpacity(Theme::power, bandOpacity);
    m_peak.reset();
    for (const std::optional<ChartRange> &range : chart.band) {
        if (range)
            m_peak = std::max(m_peak.value_or(0), range->upper);
    }
    m_values.assign(chart.timestamps.size(), std::vector<PowerValue>(m_parts.size()));
    for (std::size_t part = 0; part < m_parts.size(); ++part) {
        const auto watts = m_parts[part].coverage == Coverage::known
            ? means.means(measureOf(m_parts[part].source))
            : std::vector<std::optional<double>>(chart.timestamps.size());
        for (std::size_t point = 0; point < watts.size(); ++point)
            m_values[point][part].watts = watts[point];
    }
    showSeries(std::move(chart), powerScale(m_peak.value_or(0)));
}

void PowerChart::showSeries(SparklineData chart, double yMax)
{
    for (std::size_t part = 0; part < m_parts.size(); ++part) {
        SparklineSeries series{
            .lineColor = m_parts[part].color, .lineWidth = 1, .fillColors = {m_parts[part].fill}};
        series.values.reserve(m_values.size());
        for (const std::vector<PowerValue> &values : m_values)
            series.values.push_back(values[part].watts);
        chart.series.push_back(std::move(series));
    }
    chart.yDomain = {0, yMax};
    chart.stacking = Stacking::stacked;
    chart.showsGrid = false;
    m_chart->show(std::move(chart));
}

void PowerChart::recomputeYMax(const std::vector<SystemMetrics> &history)
{
    m_stableYMax = std::max(m_stableYMax, powerScale(peakTotal(history)));
}

PillContent PowerChart::pill(std::size_t index) const
{
    const std::vector<PowerValue> &values = m_values[index];
    const SparklineData &shown = m_chart->shown();
    // The range stands beside the time: the small card has room for the rows of the parts alone.
    PillContent content{shown.showsMeans ? meanTime(shown, index) + u" · "_s
                                + rangeText(shown, index, 1, u" W"_s)
                                         : HoverTime::string(shown.timestamps[index]),
                        {totalRow(wattsText(totalWatts(values), 2), Theme::power)}};
    for (std::size_t part = 0; part < m_parts.size(); ++part) {
        const std::optional<double> watts = values[part].watts;
        content.rows.push_back(componentRow(
            m_parts[part].label, watts ? fixedText(*watts, 2) : u"–"_s, m_parts[part].color));
    }
    return content;
}

} // namespace corvane
