#pragma once

#include "chip/FrequencyTables.h"
#include "chip/IOReportBridge.h"
#include "records/ChipReading.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// Sums up the channels of one difference between two samples and turns the sums into a reading.
/// Made for one tick; the tables must outlive it.
class ChannelTotals {
public:
    explicit ChannelTotals(const FrequencyTables &tables);

    void add(const ReportingChannel &channel);

    /// Power, load, frequency and GPU states of an interval of that many seconds; what no channel
    /// told is 0 or empty. Utilisations of cores and temperatures are not in it.
    ChipReading reading(double seconds) const;

    /// Joules that one unit of an energy counter stands for. Without a label, and for one that is
    /// not known, a nanojoule.
    static double energyToJoules(std::optional<std::string_view> unitLabel);

private:
    /// Time that processors spent in their states, in ticks of the channels' clock.
    struct Residency {
        double total = 0;
        double idle = 0;

        double activeFraction() const;
    };
    struct StateTime {
        std::string name = {};
        double residency = 0;
    };

    void addEnergy(const ReportingChannel &channel);
    void addGPUStates(const ReportingChannel &channel);
    void addCPUStates(const ReportingChannel &channel);
    double &activeTime(std::string_view gpuState);
    std::vector<GPUStateShare> gpuStateShares() const;

    const FrequencyTables &m_tables;
    double m_cpuJoules = 0;
    double m_gpuJoules = 0;
    double m_aneJoules = 0;
    Residency m_gpu = {};
    double m_gpuActive = 0;
    std::vector<StateTime> m_gpuStates = {}; ///< Active ones, in the order of appearance.
    double m_bestGPUResidency = 0;
    std::string m_bestGPUState = {};
    Residency m_cpu = {};
    double m_weightedMHz = 0;       ///< Frequency times residency.
    double m_weightedResidency = 0; ///< Of the states whose frequency is known.
};

} // namespace corvane
