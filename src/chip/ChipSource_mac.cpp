#include "chip/ChipSource.h"

#include "chip/ChipChannels.h"
#include "chip/FrequencyTables_mac.h"
#include "chip/IOReportBridge_mac.h"
#include "chip/IOReportPowerSampler.h"
#include "chip/SteadyPower.h"
#include "cpu/CoreTicks_mac.h"
#include "thermal/ThermalBridge_mac.h"
#include "threads/BackgroundReader.h"

#include <chrono>
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

/// A hub of sensors answers in milliseconds, but can also take seconds. The first answer has to
/// find the sensors.
std::function<Temperatures()> patientTemperatures(const std::function<double()> &clock)
{
    using namespace std::chrono_literals;
    using Reader = BackgroundReader<Temperatures>;
    const auto reader = std::make_shared<Reader>([] {
        return [bridge = std::make_shared<ThermalBridge>()](double) {
            return bridge->readAllTemperatures();
        };
    });
    return [reader, clock, hasAnswered = false]() mutable {
        const double now = clock();
        reader->request(now, hasAnswered ? 250ms : 1000ms);
        const auto newest = reader->newest(now);
        hasAnswered = hasAnswered || newest;
        return newest.value_or(Temperatures());
    };
}

/// The power sampler over this Mac's channels, and its watts made steady.
class MacChip {
public:
    explicit MacChip(std::function<double()> now)
        : m_now(now),
          m_sampler(PowerSampler::open({
              .cores = CPUCoreSampler(readCoreTicks),
              .temperatures = ThermalSampler(patientTemperatures(m_now)),
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
