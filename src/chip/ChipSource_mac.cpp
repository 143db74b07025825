#include "chip/ChipSource.h"

#include "chip/ChipChannels.h"
#include "chip/FrequencyTables_mac.h"
#include "chip/IOReportBridge_mac.h"
#include "chip/IOReportPowerSampler.h"
#include "chip/SteadyPower.h"
#include "cpu/CoreTicks_mac.h"
#include "thermal/ThermalBridge_mac.h"
#include "threads/PatientReader.h"

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace corvane {

namespace {

using Channels = ChipChannels<IOReportBridge>;
using PowerSampler = IOReportPowerSampler<Channels>;

/// Degrees Celsius by sensor name.
using Temperatures = std::map<std::string, double>;

/// A hub of sensors answers in milliseconds, but can also take seconds.
std::shared_ptr<PatientReader<Temperatures>> makeSensorReader(const std::function<double()> &now)
{
    return std::make_shared<PatientReader<Temperatures>>(
        [] {
            return [bridge = std::make_shared<ThermalBridge>()] {
                return bridge->readAllTemperatures();
            };
        },
        now);
}

/// The power sampler over this Mac's channels, and its watts made steady.
class MacChip {
public:
    explicit MacChip(std::function<double()> now)
        : m_now(now),
          m_sampler(PowerSampler::open({
              .cores = CPUCoreSampler(readCoreTicks),
              .temperatures = ThermalSampler([sensors = makeSensorReader(m_now)] {
                  return sensors->read().value_or(Temperatures());
              }),
              .frequencies = readFrequencyTables(),
              .openBridge =
                  [this](const std::vector<ChannelGroupRequest> &requests) {
                      auto channels = Channels::over(IOReportBridge::withChannelGroups(requests));
                      m_channels = channels.get();
                      return channels;
                  },
              .now = std::move(now),
          })),
          m_lastTime(m_now())
    {
    }

    bool hasChannels() const { return m_sampler != nullptr; }

    std::optional<ChipReading> sample()
    {
        const double time = m_now();
        std::optional<ChipReading> reading = m_sampler->sample();
        if (reading) {
            m_power.apply(*reading, time - m_lastTime);
            reading->denied.cpuLoad = !m_channels->hasCPUStates();
            reading->denied.gpuLoad = !m_channels->hasGPUStates();
            m_lastTime = time;
        }
        return reading;
    }

private:
    std::function<double()> m_now;
    const Channels *m_channels = nullptr; ///< Owned by the sampler.
    std::unique_ptr<PowerSampler> m_sampler;
    SteadyPower m_power = {};
    double m_lastTime; ///< Of the last reading.
};

} // namespace

ChipSource openChipSource(std::function<double()> now, const std::shared_ptr<GPUHandOver> &)
{
    const auto chip = std::make_shared<MacChip>(std::move(now));
    if (!chip->hasChannels())
        return {};
    return [chip] { return chip->sample(); };
}

} // namespace corvane
