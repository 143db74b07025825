#pragma once

#include "figures/Figures.h"
#include "timeline/Energy.h"

namespace corvane {

/// Joules of each part since the start, summed over the time in which its watts were known. A part
/// whose watts were never known has no sum.
class EnergyTotals {
public:
    /// Adds the time since the sample before, at the watts of this one. A gap of more than five
    /// seconds, such as sleep, is not counted, nor is a clock that ran backwards.
    void add(const Figures &figures);

    std::optional<double> cpuJoules() const { return m_energy.cpu; }
    std::optional<double> gpuJoules() const { return m_energy.gpu; }
    std::optional<double> npuJoules() const { return m_energy.npu; }

private:
    std::optional<double> m_lastTime = {};
    Energy m_energy; ///< Its parts alone.
};

} // namespace corvane
