#include "cpu/CPUFrequencies.h"

#include "platform/KernelText.h"
#include "platform/Plausible.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

constexpr std::uint64_t stepKHz = 100'000;

std::optional<std::uint64_t> plausible(std::optional<std::uint64_t> kHz)
{
    if (!kHz || *kHz == 0 || double(*kHz) > highestMHz * 1000)
        return std::nullopt;
    return kHz;
}

void appendListed(std::vector<std::uint64_t> &states, const std::optional<std::string> &list)
{
    std::string_view text = trimmed(list ? std::string_view(*list) : std::string_view());
    while (const auto word = takeWord(text)) {
        if (const auto kHz = parseKHz(*word))
            states.push_back(*kHz);
    }
}

std::vector<std::uint64_t> listedStates(std::span<const CPUFrequencyRange> policies)
{
    std::vector<std::uint64_t> states;
    for (const CPUFrequencyRange &policy : policies) {
        appendListed(states, policy.available);
        appendListed(states, policy.boost);
    }
    std::sort(states.begin(), states.end());
    states.erase(std::unique(states.begin(), states.end()), states.end());
    return states;
}

std::vector<std::uint64_t> steppedStates(std::span<const CPUFrequencyRange> policies)
{
    std::optional<std::uint64_t> least;
    std::optional<std::uint64_t> greatest;
    for (const CPUFrequencyRange &policy : policies) {
        const auto minimum = parseKHz(policy.minimum.value_or(std::string()));
        const auto maximum = parseKHz(policy.maximum.value_or(std::string()));
        if (!minimum || !maximum || *minimum > *maximum)
            continue;
        least = std::min(least.value_or(*minimum), *minimum);
        greatest = std::max(greatest.value_or(*maximum), *maximum);
    }
    std::vector<std::uint64_t> states;
    if (!least)
        return states;
    for (std::uint64_t kHz = *least; kHz < *greatest; kHz += stepKHz)
        states.push_back(kHz);
    states.push_back(*greatest); // Seldom a whole number of steps away.
    return states;
}

} // namespace

std::vector<std::uint64_t> cpuFrequencyStates(std::span<const CPUFrequencyRange> policies)
{
    std::vector<std::uint64_t> states = listedStates(policies);
    return states.empty() ? steppedStates(policies) : states;
}

std::optional<std::uint64_t> parseKHz(std::string_view text)
{
    return plausible(parseUnsigned(trimmed(text)));
}

std::optional<std::uint64_t> cpuInfoKHz(std::string_view cpuInfo, int cpu)
{
    bool wanted = false;
    while (const auto line = takeKeyValue(cpuInfo)) {
        if (line->key == "processor")
            wanted = parseUnsigned(line->value) == static_cast<std::uint64_t>(cpu);
        if (!wanted || line->key != "cpu MHz")
            continue;
        const auto megahertz = parseDecimal(line->value);
        if (!megahertz || *megahertz < 0 || *megahertz > highestMHz)
            return std::nullopt;
        return plausible(static_cast<std::uint64_t>(std::llround(*megahertz * 1000)));
    }
    return std::nullopt;
}

std::vector<CPUFrequencyTime> parseTimeInState(std::string_view text)
{
    std::vector<CPUFrequencyTime> times;
    times.reserve(static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1);
    while (auto line = takeLine(text)) {
        const auto kHz = plausible(takeUnsigned(*line));
        const auto ticks = takeUnsigned(*line);
        if (kHz && ticks && trimmed(*line).empty())
            times.push_back({*kHz, *ticks});
    }
    return times;
}

std::size_t nearestFrequencyState(std::span<const std::uint64_t> states, std::uint64_t kHz)
{
    const auto above = std::lower_bound(states.begin(), states.end(), kHz);
    if (above == states.begin())
        return 0;
    const auto place = static_cast<std::size_t>(above - states.begin());
    if (above == states.end())
        return place - 1;
    return *above - kHz < kHz - states[place - 1] ? place : place - 1;
}

} // namespace corvane
