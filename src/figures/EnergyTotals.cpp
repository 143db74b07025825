#include "figures/EnergyTotals.h"

#include <utility>

namespace corvane {

void EnergyTotals::add(const Figures &figures)
{
    const auto last = std::exchange(m_lastTime, figures.unixTime);
    const double step = figures.unixTime - last.value_or(figures.unixTime);
    if (!(step >= 0) || step > longestMeasuredStep)
        return;
    m_energy += {.cpu = joules(figures.cpu.watts, step),
                 .gpu = joules(gpuWatts(figures), step),
                 .npu = figures.npu ? joules(figures.npu->watts, step) : std::nullopt};
}

} // namespace corvane
