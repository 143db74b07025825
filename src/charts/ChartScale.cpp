#include "charts/ChartScale.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane {

bool ChartScale::isUsable() const
{
    return time.span() > 0 && value.span() > 0 && std::isfinite(time.span())
        && std::isfinite(value.span());
}

std::optional<double> ChartScale::xFor(double seconds) const
{
    const double fraction = (seconds - time.lower) / time.span();
    if (!(fraction >= 0 && fraction <= 1))
        return std::nullopt;
    return size.width() * fraction;
}

double ChartScale::yFor(double amount) const
{
    const double pinned = std::fmax(std::fmin(amount, value.upper), value.lower);
    return size.height() * (1 - (pinned - value.lower) / value.span());
}

std::vector<std::optional<double>> sampleColumns(std::span<const double> timestamps,
                                                 const ChartScale &scale)
{
    std::vector<std::optional<double>> columns(timestamps.size());
    double earliestFollowing = std::numeric_limits<double>::infinity();
    for (std::size_t i = timestamps.size(); i-- > 0;) {
        if (!(timestamps[i] <= earliestFollowing))
            continue;
        earliestFollowing = timestamps[i];
        columns[i] = scale.xFor(timestamps[i]);
    }
    return columns;
}

std::optional<std::size_t> nearestIndex(std::span<const double> timestamps, const ChartRange &time,
                                        double x, double width)
{
    if (!(width > 0) || timestamps.empty() || !(time.span() > 0))
        return std::nullopt;
    if (timestamps.size() == 1)
        return 0;

    const double fraction = std::fmin(std::fmax(x / width, 0), 1);
    const double target = time.lower + fraction * time.span();

    std::optional<std::size_t> best;
    double bestDistance = std::numeric_limits<double>::infinity();
    double earliestFollowing = std::numeric_limits<double>::infinity();
    for (std::size_t i = timestamps.size(); i-- > 0;) {
        if (!(timestamps[i] <= earliestFollowing))
            continue;
        earliestFollowing = timestamps[i];
        const double distance = std::abs(target - timestamps[i]);
        if (distance <= bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

double clampedPillX(double x, double halfWidth, double plotWidth)
{
    constexpr double margin = 4;
    return std::min(std::max(x, halfWidth + margin), plotWidth - halfWidth - margin);
}

double pillY(double height)
{
    return std::max(4.0, height * 0.5 + 2);
}

} // namespace corvane
