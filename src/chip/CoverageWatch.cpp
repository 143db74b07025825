#include "chip/CoverageWatch.h"

#include <utility>

namespace corvane {

namespace {

Coverage knownOr(bool isKnown, Coverage otherwise)
{
    return isKnown ? Coverage::known : otherwise;
}

/// An integrated GPU whose watts the package counts.
void setGraphicsWatts(std::vector<GPUCoverage> &gpus, const ChipReading &reading)
{
    for (GPUCoverage &gpu : gpus) {
        if (!gpu.integrated)
            continue;
        for (const GPUMetrics &metrics : reading.gpus) {
            if (metrics.device == gpu.device && metrics.watts)
                gpu.watts = Coverage::known;
        }
    }
}

} // namespace

void CoverageWatch::apply(ChipReading &reading, MachineFacts facts, double now)
{
    MachineCoverage coverage = {.isWhole = false};
    coverage.cpuWatts = knownOr(m_cpuWatts.update(!reading.denied.cpuWatts, now),
                                facts.countsPackages ? Coverage::locked : Coverage::absent);
    coverage.packageWatts =
        knownOr(m_packageWatts.update(reading.packageWatts.has_value(), now), Coverage::absent);
    const bool hasTemperature = reading.cpuTempC || reading.packageTempC;
    coverage.cpuTemperature =
        knownOr(m_cpuTemperature.update(hasTemperature, now), Coverage::absent);
    coverage.cpuFrequency = knownOr(facts.hasFrequency, Coverage::absent);
    coverage.cpuFrequencyIsNominal = facts.frequencyIsNominal;
    coverage.npuLoad = facts.npuLoad;
    coverage.npuWatts = facts.npuWatts;
    coverage.systemWatts = knownOr(!facts.systemWattsSource.isEmpty(), Coverage::absent);
    coverage.systemWattsSource = facts.systemWattsSource;
    coverage.gpus = std::move(facts.gpus);
    setGraphicsWatts(coverage.gpus, reading);

    reading.denied.cpuWatts = reading.denied.cpuWatts && coverage.cpuWatts == Coverage::known;
    if (!m_coverage || *m_coverage != coverage)
        m_coverage = std::make_shared<const MachineCoverage>(std::move(coverage));
    reading.coverage = m_coverage;
}

} // namespace corvane
