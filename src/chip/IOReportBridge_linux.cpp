#include "chip/IOReportBridge.h"

#include "chip/ChipReader.h"

namespace corvane {

struct IOReportBridge::Sample {
    ChipSnapshot snapshot = {};             ///< Of a raw sample.
    std::vector<ChipChannel> channels = {}; ///< Of a difference.
};

void IOReportBridge::SampleDeleter::operator()(Sample *sample) const
{
    delete sample;
}

struct IOReportBridge::Subscription {
    ChipReader::Parts parts;
    ChipReader reader;

    bool wants(const ChipChannel &channel) const
    {
        return (channel.group == ChipChannelGroup::cpu && parts.cpu)
            || (channel.group == ChipChannelGroup::gpu && parts.gpu)
            || (channel.group == ChipChannelGroup::energy && parts.energy);
    }
};

namespace {

ChipReader::Parts requestedParts(const std::vector<ChannelGroupRequest> &requests)
{
    ChipReader::Parts parts = {.cpu = false, .gpu = false, .energy = false};
    for (const ChannelGroupRequest &request : requests) {
        if (request.group == ChipChannelGroup::cpu)
            parts.cpu = parts.cpu
                || request.subgroup.value_or(std::string(ChipChannelGroup::cpuSubgroup))
                    == ChipChannelGroup::cpuSubgroup;
        if (request.subgroup)
            continue; // The other two groups have none.
        parts.gpu = parts.gpu || request.group == ChipChannelGroup::gpu;
        parts.energy = parts.energy || request.group == ChipChannelGroup::energy;
    }
    return parts;
}

} // namespace

std::unique_ptr<IOReportBridge> IOReportBridge::withChannelGroups(
    const std::vector<ChannelGroupRequest> &requests, const std::string &root)
{
    const ChipReader::Parts parts = requestedParts(requests);
    if (!parts.cpu && !parts.gpu && !parts.energy)
        return nullptr;
    std::unique_ptr<Subscription> subscription(
        new Subscription{.parts = parts, .reader = {root, parts, GPUWatch::shared(root)}});
    if (!subscription->reader.hasAnything())
        return nullptr;
    return std::unique_ptr<IOReportBridge>(new IOReportBridge(std::move(subscription)));
}

IOReportBridge::IOReportBridge(std::unique_ptr<Subscription> subscription)
    : m_subscription(std::move(subscription))
{
}

IOReportBridge::~IOReportBridge() = default;

IOReportBridge::SamplePtr IOReportBridge::takeSample()
{
    return SamplePtr(new Sample{.snapshot = m_subscription->reader.read()});
}

IOReportBridge::SamplePtr IOReportBridge::delta(const Sample *from, const Sample *to) const
{
    if (!from || !to)
        return nullptr;
    return SamplePtr(new Sample{
        .channels = chipChannels(from->snapshot, to->snapshot, m_subscription->reader.clusters())});
}

void IOReportBridge::iterate(const Sample *delta,
                             const std::function<void(const ReportingChannel &)> &visit) const
{
    if (!delta)
        return;
    std::vector<ChannelState> states;
    for (const ChipChannel &channel : delta->channels) {
        if (!m_subscription->wants(channel))
            continue;
        states.clear();
        for (const ChipChannel::State &state : channel.states)
            states.push_back({state.name, state.residency});
        visit({.group = channel.group,
               .subgroup = channel.subgroup,
               .name = channel.name,
               .unit = channel.unit,
               .value = channel.value,
               .states = states});
    }
}

} // namespace corvane
