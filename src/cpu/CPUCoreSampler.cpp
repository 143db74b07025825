#include "cpu/CPUCoreSampler.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

/// Busy share of the time between two readings of one CPU.
double busyFraction(const CoreTicks &before, const CoreTicks &after)
{
    // Each difference in 32 bits, so that a counter that wrapped still tells the truth.
    const std::uint32_t user = after.user - before.user;
    const std::uint32_t system = after.system - before.system;
    const std::uint32_t idle = after.idle - before.idle;
    const std::uint32_t nice = after.nice - before.nice;
    const std::uint64_t total = std::uint64_t(user) + system + idle + nice;
    if (total == 0)
        return 0;
    return 1 - static_cast<double>(idle) / static_cast<double>(total);
}

} // namespace

CPUCoreSampler::CPUCoreSampler()
    : CPUCoreSampler([reader = std::make_shared<CoreTicksReader>()] { return reader->read(); })
{
}

CPUCoreSampler::CPUCoreSampler(TicksSource ticks) : m_ticks(std::move(ticks)) { }

std::vector<double> CPUCoreSampler::sample()
{
    auto ticks = m_ticks();
    if (!ticks)
        return {};
    std::vector<double> utilizations(ticks->size(), 0.0);
    for (std::size_t cpu = 0; cpu < std::min(ticks->size(), m_previous.size()); ++cpu)
        utilizations[cpu] = busyFraction(m_previous[cpu], (*ticks)[cpu]);
    m_previous = std::move(*ticks);
    return utilizations;
}

} // namespace corvane
