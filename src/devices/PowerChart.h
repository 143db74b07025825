#pragma once

#include "charts/HoverPill.h"
#include "devices/PowerParts.h"
#include "timeline/ChartHistory.h"

namespace corvane {

class Sparkline;
struct SparklineData;

/// The highest total power of the history in watts, each sample averaged with its neighbours so
/// that a single spike does not set the scale. 0 for an empty history. Samples of which nothing is
/// known are left out.
double peakTotal(const std::vector<SystemMetrics> &history);

/// Upper bound in watts of a chart with that peak: 18 % above it, rounded up to 5, 10 or a multiple
/// of 5, 10 or 25.
double powerScale(double peak);

/// The stacked chart of power, which the wide and the small card of power share. The scale of the
/// newest minute never shrinks. Owned by its card, as is the chart itself.
class PowerChart {
public:
    explicit PowerChart(QWidget *card);

    void show(const ChartHistory &history, const MachineCoverage &machine);

    /// Raises the scale as `show` does and changes nothing else.
    void recomputeYMax(const std::vector<SystemMetrics> &history);

    double stableYMax() const { return m_stableYMax; }

    /// Of the history that is shown; absent when none of its samples has all watts.
    std::optional<double> peak() const { return m_peak; }

    Sparkline *chart() const { return m_chart; }

private:
    void showSamples(const std::vector<SystemMetrics> &history, const MachineCoverage &machine);
    void showMeans(const MeanWindow &window, const MachineCoverage &machine);
    void showSeries(SparklineData chart, double yMax);
    PillContent pill(std::size_t index) const;

    Sparkline *m_chart;
    double m_stableYMax = 5;
    std::optional<double> m_peak = {};
    std::vector<PowerPart> m_parts = {};
    std::vector<std::vector<PowerValue>> m_values = {}; ///< Of each point of the chart.
    std::optional<MeanWindow::Key> m_shownMeans = {};   ///< Absent while the chart shows samples.
};

} // namespace corvane
