#pragma once

#include "chip/ChannelTotals.h"
#include "chip/FrequencyTables.h"
#include "chip/ReportingChannel.h"
#include "cpu/CPUCoreSampler.h"
#include "platform/BootClock.h"
#include "records/ChipReading.h"
#include "thermal/ThermalSampler.h"
#include "threads/OneThread.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace corvane {

/// Makes one chip reading a tick: power, load and frequency since the last successful tick, and the
/// temperatures now. Used on one thread.
///
/// `Bridge` is a subscription to reporting channels: `IOReportBridge`, or a test's script. It takes
/// samples, forms the difference of two and walks it; a missing sample or difference is null.
template <typename Bridge>
class IOReportPowerSampler {
public:
    /// What a chip reading is made from.
    struct Sources {
        CPUCoreSampler cores;
        ThermalSampler temperatures;
        FrequencyTables frequencies = {};
        /// Subscribes to channels; null when this machine has none of them.
        std::function<std::unique_ptr<Bridge>(const std::vector<ChannelGroupRequest> &)>
            openBridge = {};
        std::function<double()> now = secondsSinceBoot; ///< In seconds; a test steps its own.
    };

    /// Null when this machine has no reporting channels.
    static std::unique_ptr<IOReportPowerSampler> open(Sources sources)
    {
        auto bridge = sources.openBridge({
            {.group = "Energy Model"},
            {.group = "GPU Stats"},
            {.group = "CPU Stats", .subgroup = "CPU Complex Performance States"},
        });
        if (!bridge)
            return nullptr;
        return std::unique_ptr<IOReportPowerSampler>(
            new IOReportPowerSampler(std::move(sources), std::move(bridge)));
    }

    /// Absent when the channels could not be read; the next reading then covers this interval too,
    /// so that no energy is lost or counted twice.
    std::optional<ChipReading> sample()
    {
        m_thread.check();
        const double now = m_sources.now();
        if (!m_lastRaw)
            return std::nullopt;
        Sample raw = m_bridge->takeSample();
        const Sample delta = m_bridge->delta(m_lastRaw.get(), raw.get());
        if (!delta)
            return std::nullopt;
        ChannelTotals totals(m_sources.frequencies);
        m_bridge->iterate(delta.get(),
                          [&totals](const ReportingChannel &channel) { totals.add(channel); });
        const double seconds = std::max(now - m_lastTime, leastSeconds);
        m_lastRaw = std::move(raw);
        m_lastTime = now;

        ChipReading reading = totals.reading(seconds);
        reading.cpuCoreUtilizations = m_sources.cores.sample();
        setTemperatures(reading, m_sources.temperatures.sample());
        return reading;
    }

private:
    using Sample = decltype(std::declval<Bridge &>().takeSample());

    // Two calls can follow each other within milliseconds; the floor keeps the watts in bounds.
    static constexpr double leastSeconds = 0.05;

    IOReportPowerSampler(Sources sources, std::unique_ptr<Bridge> bridge)
        : m_sources(std::move(sources)),
          m_bridge(std::move(bridge)),
          m_lastRaw(m_bridge->takeSample()),
          m_lastTime(m_sources.now())
    {
    }

    Sources m_sources;
    std::unique_ptr<Bridge> m_bridge;
    Sample m_lastRaw;
    double m_lastTime; ///< When m_lastRaw was taken.
    OneThread m_thread = {};
};

} // namespace corvane
