#include "chip/ChipSource.h"

#include "chip/IOReportPowerSampler.h"
#include "chip/ThermalBridge.h"

#include <utility>

namespace corvane {

namespace {

std::optional<ChannelSource> openChannels(const std::vector<ChannelGroupRequest> &requests,
                                          const std::string &root)
{
    const std::shared_ptr bridge = IOReportBridge::withChannelGroups(requests, root);
    if (!bridge)
        return std::nullopt;
    using Sample = ChannelSource::Sample;
    const auto sampleOf = [](const Sample &sample) {
        return static_cast<const IOReportBridge::Sample *>(sample.get());
    };
    return ChannelSource{
        .takeSample = [bridge] { return Sample(bridge->takeSample()); },
        .visitDelta =
            [bridge, sampleOf](const Sample &from, const Sample &to, const ChannelVisitor &visit) {
                const auto delta = bridge->delta(sampleOf(from), sampleOf(to));
                bridge->iterate(delta.get(), visit);
                return delta != nullptr;
            },
    };
}

} // namespace

ChipSource openChipSource(const std::string &root, const FrequencyTables &frequencies,
                          std::function<double()> now)
{
    const std::shared_ptr sampler = IOReportPowerSampler::open({
        .cores = CPUCoreSampler(
            [reader = std::make_shared<CoreTicksReader>(root)] { return reader->read(); }),
        .temperatures = ThermalSampler([bridge = std::make_shared<ThermalBridge>(root)] {
            return bridge->readAllTemperatures();
        }),
        .frequencies = frequencies,
        .openChannels = [root](const auto &requests) { return openChannels(requests, root); },
        .now = std::move(now),
    });
    if (!sampler)
        return {};
    return [sampler] { return sampler->sample(); };
}

} // namespace corvane
