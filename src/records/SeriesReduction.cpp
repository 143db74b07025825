#include "records/SeriesReduction.h"

#include <algorithm>
#include <utility>

namespace corvane {

std::vector<SystemMetrics> chartDownsampled(const std::vector<SystemMetrics> &samples,
                                            int maxPoints)
{
    const auto count = static_cast<std::ptrdiff_t>(samples.size());
    if (maxPoints >= count)
        return samples;

    std::vector<SystemMetrics> chosen;
    chosen.reserve(static_cast<std::size_t>(maxPoints));
    if (maxPoints > 1) {
        const double step = static_cast<double>(count - 1) / (maxPoints - 1);
        for (int i = 0; i < maxPoints - 1; ++i)
            chosen.push_back(samples[static_cast<std::size_t>(step * i)]);
    }
    chosen.push_back(samples.back());
    return chosen;
}

std::optional<QString> dominantGPUState(const std::vector<SystemMetrics> &samples, int tail)
{
    const auto count = static_cast<std::ptrdiff_t>(samples.size());
    const std::ptrdiff_t first = std::max<std::ptrdiff_t>(count - tail, 0);

    std::vector<std::pair<QString, int>> counts;
    for (auto sample = samples.begin() + first; sample != samples.end(); ++sample) {
        if (!sample->chip || sample->chip->gpuDominantState.value_or(QString()).isEmpty())
            continue;
        const QString &state = *sample->chip->gpuDominantState;
        const auto known = std::ranges::find(counts, state, &std::pair<QString, int>::first);
        if (known == counts.end())
            counts.emplace_back(state, 1);
        else
            ++known->second;
    }
    if (counts.empty())
        return std::nullopt;
    return std::ranges::max_element(counts, {}, &std::pair<QString, int>::second)->first;
}

} // namespace corvane
