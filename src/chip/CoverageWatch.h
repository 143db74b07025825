#pragma once

#include "platform/KnownLately.h"
#include "records/ChipReading.h"

#include <memory>

namespace corvane {

/// What the machine itself has, whatever a reading tells.
struct MachineFacts {
    bool countsPackages = false; ///< The kernel counts the energy of a package, readable or not.
    bool hasFrequency = false;
    bool frequencyIsNominal = false;
    Coverage npuLoad = Coverage::absent;
    Coverage npuWatts = Coverage::absent;
    QString systemWattsSource = {};
    std::vector<GPUCoverage> gpus = {};
};

/// Keeps what a Linux machine tells, as one value that all readings share until it changes. Used on
/// one thread.
class CoverageWatch {
public:
    /// Gives the reading its coverage, and decides by it what of the reading is denied: a value
    /// that is known but missing in this reading.
    void apply(ChipReading &reading, MachineFacts facts, double now);

private:
    std::shared_ptr<const MachineCoverage> m_coverage = {};
    KnownLately m_cpuWatts = {};
    KnownLately m_packageWatts = {};
    KnownLately m_cpuTemperature = {};
};

} // namespace corvane
