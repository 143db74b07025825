#pragma once

#include "chip/FrequencyTables.h"
#include "chip/GPUStateTimes.h"
#include "chip/ReportingChannel.h"
#include "records/ChipReading.h"

#include <optional>
#include <string_view>

namespace corvane {

/// Sums up the channels of one difference between two samples and turns the sums into a reading.
/// Made for one tick; the tables must outlive it.
class ChannelTotals {
public:
    explicit ChannelTotals(const FrequencyTables &tables);

    void add(const ReportingChannel &channel);

    /// Power, load, frequency and GPU states of an interval of that many seconds; 0 or empty where
    /// there was no channel. Utilisations of cores and temperatures are not in it.
    ChipReading reading(double seconds) const;

    /// Joules that one unit of an energy counter stands for; a nanojoule without a label, and for
    /// an unknown one.
    static double energyToJoules(std::optional<std::string_view> unitLabel);

private:
    /// Time that processors spent in their states, in ticks of the channels' clock.
    struct Residency {
        double total = 0;
        double idle = 0;

        double activeFraction() const;
    };

    void addEnergy(const ReportingChannel &channel);
    void addGPUStates(const ReportingChannel &channel);
    void addCPUStates(const ReportingChannel &channel);

    const FrequencyTables &m_tables;
    double m_cpuJoules = 0;
    double m_gpuJoules = 0;
    double m_aneJoules = 0;
    Residency m_gpu = {};
    GPUStateTimes m_gpuStates = {};
    Residency m_cpu = {};
    double m_weightedMHz = 0;       ///< Frequency times residency.
    double m_weightedResidency = 0; ///< Residency of the states with a known frequency.
};

} // namespace corvane
