#include "chip/ChipSource.h"

#include "chip/IOReportBridge_mac.h"
#include "chip/IOReportPowerSampler.h"
#include "chip/ThermalBridge_mac.h"

#include <memory>
#include <utility>

namespace corvane {

ChipSource openChipSource(std::function<double()> now)
{
    const std::shared_ptr sampler = IOReportPowerSampler<IOReportBridge>::open({
        .cores = CPUCoreSampler(readCoreTicks),
        .temperatures = ThermalSampler(
            [bridge = std::make_shared<ThermalBridge>()] { return bridge->readAllTemperatures(); }),
        .frequencies = readFrequencyTables(),
        .openBridge = IOReportBridge::withChannelGroups,
        .now = std::move(now),
    });
    if (!sampler)
        return {};
    return [sampler] { return sampler->sample(); };
}

} // namespace corvane
