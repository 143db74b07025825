#pragma once

#include "chip/ChannelSource.h"
#include "chip/FrequencyTables.h"
#include "chip/ThermalSampler.h"
#include "cpu/CPUCoreSampler.h"
#include "platform/BootClock.h"
#include "records/ChipReading.h"

namespace corvane {

/// What a chip reading is made from.
struct PowerSamplerSources {
    CPUCoreSampler cores;
    ThermalSampler temperatures;
    FrequencyTables frequencies = {};
    /// Subscribes to channels; nothing when this machine has none of them.
    std::function<std::optional<ChannelSource>(const std::vector<ChannelGroupRequest> &)>
        openChannels = {};
    std::function<double()> now = secondsSinceBoot; ///< In seconds; a test steps its own.
};

/// Makes one chip reading a tick: power, load and frequency since the last successful tick, and the
/// temperatures now. Owned by the system sampler, used on its thread.
class IOReportPowerSampler {
public:
    /// Null when this machine has no reporting channels.
    static std::unique_ptr<IOReportPowerSampler> open(PowerSamplerSources sources);

    /// Nothing when the channels could not be read; the next reading then covers this interval too,
    /// so that no energy is lost or counted twice.
    std::optional<ChipReading> sample();

private:
    IOReportPowerSampler(PowerSamplerSources sources, ChannelSource channels);

    PowerSamplerSources m_sources;
    ChannelSource m_channels;
    ChannelSource::Sample m_lastRaw;
    double m_lastTime; ///< When m_lastRaw was taken.
};

} // namespace corvane
