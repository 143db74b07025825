#include "cpu/CPUCoreSampler.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

double busyFraction(const CoreTicks &before, const CoreTicks &now)
{
    // Each difference in 32 bits, so that it is right for a counter that wrapped.
    const std::uint32_t user = now.user - before.user;
    const std::uint32_t system = now.system - before.system;
    const std::uint32_t idle = now.idle - before.idle;
    const std::uint32_t nice = now.nice - before.nice;
    const std::uint64_t total = std::uint64_t(user) + system + idle + nice;
    if (total == 0)
        return 0;
    return 1 - static_cast<double>(idle) / static_cast<double>(total);
}

} // namespace

std::vector<double> coreUtilizations(const std::vector<CoreTicks> &before,
                                     const std::vector<CoreTicks> &now)
{
    std::vector<double> utilizations(now.size(), 0.0);
    for (std::size_t cpu = 0; cpu < std::min(now.size(), before.size()); ++cpu)
        utilizations[cpu] = busyFraction(before[cpu], now[cpu]);
    return utilizations;
}

CPUCoreSampler::CPUCoreSampler(TicksSource ticks) : m_ticks(std::move(ticks)) { }

std::vector<double> CPUCoreSampler::sample()
{
    m_thread.check();
    auto ticks = m_ticks();
    if (!ticks)
        return {};
    std::vector<double> utilizations = coreUtilizations(m_previous, *ticks);
    m_previous = std::move(*ticks);
    return utilizations;
}

} // namespace corvane
