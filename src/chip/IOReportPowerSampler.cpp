#include "chip/IOReportPowerSampler.h"

#include "chip/ChannelTotals.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

// Two calls can follow each other within milliseconds; the floor keeps the watts in bounds.
constexpr double leastSeconds = 0.05;

} // namespace

std::unique_ptr<IOReportPowerSampler> IOReportPowerSampler::open(PowerSamplerSources sources)
{
    auto channels = sources.openChannels({
        {.group = "Energy Model"},
        {.group = "GPU Stats"},
        {.group = "CPU Stats", .subgroup = "CPU Complex Performance States"},
    });
    if (!channels)
        return nullptr;
    return std::unique_ptr<IOReportPowerSampler>(
        new IOReportPowerSampler(std::move(sources), std::move(*channels)));
}

IOReportPowerSampler::IOReportPowerSampler(PowerSamplerSources sources, ChannelSource channels)
    : m_sources(std::move(sources)),
      m_channels(std::move(channels)),
      m_lastRaw(m_channels.takeSample()),
      m_lastTime(m_sources.now())
{
}

std::optional<ChipReading> IOReportPowerSampler::sample()
{
    const double now = m_sources.now();
    if (!m_lastRaw)
        return std::nullopt;
    ChannelSource::Sample raw = m_channels.takeSample();
    if (!raw)
        return std::nullopt;
    ChannelTotals totals(m_sources.frequencies);
    const auto add = [&totals](const ReportingChannel &channel) { totals.add(channel); };
    if (!m_channels.visitDelta(m_lastRaw, raw, add))
        return std::nullopt;
    const double seconds = std::max(now - m_lastTime, leastSeconds);
    m_lastRaw = std::move(raw);
    m_lastTime = now;

    ChipReading reading = totals.reading(seconds);
    reading.cpuCoreUtilizations = m_sources.cores.sample();
    const ThermalSampler::Reading temperatures = m_sources.temperatures.sample();
    reading.cpuTempC = temperatures.cpu;
    reading.gpuTempC = temperatures.gpu;
    reading.aneTempC = temperatures.ane;
    reading.packageTempC = temperatures.package;
    return reading;
}

} // namespace corvane
