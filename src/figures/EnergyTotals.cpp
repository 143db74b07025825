#include "figures/EnergyTotals.h"

#include <utility>

namespace corvane {

namespace {

constexpr double longestStep = 5; ///< Seconds.

void addJoules(std::optional<double> &sum, std::optional<double> watts, double seconds)
{
    if (watts)
        sum = sum.value_or(0) + *watts * seconds;
}

} // namespace

void EnergyTotals::add(const Figures &figures)
{
    const auto last = std::exchange(m_lastTime, figures.unixTime);
    const double step = figures.unixTime - last.value_or(figures.unixTime);
    if (!(step >= 0) || step > longestStep)
        return;
    addJoules(m_cpu, figures.cpu.watts, step);
    addJoules(m_gpu, gpuWatts(figures), step);
    addJoules(m_npu, figures.npu ? figures.npu->watts : std::nullopt, step);
}

} // namespace corvane
