#pragma once

#include "charts/HoverPill.h"
#include "charts/SparklineData.h"
#include "timeline/ChartHistory.h"

#include <functional>

namespace corvane {

/// Makes the chart of a window of means: a point at the end of each span, and one without values
/// where nothing was sampled before a span. Used at once, while the window is valid.
class MeansChart {
public:
    /// From the unit of a measure to that of the chart, rising.
    using Conversion = std::function<double(double)>;

    explicit MeansChart(const MeanWindow &window);

    /// With timestamps and x domain, and no series.
    SparklineData chart() const;

    std::vector<std::optional<double>> means(Measure measure,
                                             const Conversion &conversion = {}) const;
    std::vector<std::optional<ChartRange>> ranges(Measure measure,
                                                  const Conversion &conversion = {}) const;

    /// A chart of one load in per cent, with its band.
    SparklineData loadChart(Measure measure, const QColor &color,
                            const Conversion &conversion = {}) const;

private:
    /// The points at which the measure was known, in the form that `convert` gives them.
    template <typename Value, typename Convert>
    std::vector<std::optional<Value>> values(Measure measure, Convert convert) const;

    MeanWindow m_window;
    std::vector<double> m_timestamps;
    std::vector<const MeanRecord *> m_points; ///< Null for a point without values.
};

/// The opacity of a band in the colour of its line.
inline constexpr double bandOpacity = 0.28;

/// The time of a point: with seconds, or in a window of a day with the weekday.
QString meanTime(const SparklineData &chart, std::size_t index);

/// The pill of a chart of one load: time, mean and range.
PillContent loadPill(const SparklineData &chart, std::size_t index, const QColor &color);

/// The range at a point: "12–58%".
QString rangeText(const SparklineData &chart, std::size_t index, int fractionDigits,
                  const QString &unit);

} // namespace corvane
