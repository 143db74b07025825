#include "simulated_mac/ReportingFunctions.h"
#include "simulated_mac/SimulatedMac.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <set>

using namespace corvane::simulated;

namespace {

constexpr int badArgument = 273;
constexpr std::int64_t invalid = std::numeric_limits<std::int64_t>::min();

/// Which of the machine's channels a client asked for.
class ChannelSet : public Dictionary {
public:
    std::vector<std::size_t> channels;
};

class Subscription;

/// Subscriptions that were never closed: known to the kernel, so that they are no lost memory.
std::set<const Subscription *> &openSubscriptions()
{
    static auto *open = new std::set<const Subscription *>; // Outlives the search for lost memory.
    return *open;
}

class Subscription : public Object {
public:
    Subscription() : Object(subscriptionType)
    {
        openSubscriptions().insert(this);
        ++ledger().subscriptions;
    }
    ~Subscription() override
    {
        openSubscriptions().erase(this);
        --ledger().subscriptions;
    }
};

/// One channel of a sample or a difference. Its texts are made when they are asked for and go with
/// it, so that a client that keeps one too long is found out.
class ChannelEntry : public Dictionary {
public:
    ChannelEntry(const Channel &channel, SimulatedMac::Counter counter)
        : channel(channel),
          counter(std::move(counter))
    {
    }

    /// The same text is the same string.
    CFStringRef text(const std::string &text)
    {
        auto known = std::find_if(texts.begin(), texts.end(),
                                  [&](const auto &string) { return string->text == text; });
        if (known == texts.end())
            known = texts.insert(known, std::make_unique<String>(text));
        return referenceTo<CFStringRef>(known->get());
    }

    const Channel &channel;
    SimulatedMac::Counter counter;
    std::vector<std::unique_ptr<String>> texts;
};

/// A sample, or the difference of two.
class Samples : public Dictionary {
public:
    std::vector<std::size_t> channels;
    std::vector<std::unique_ptr<ChannelEntry>> entries;
};

CFDictionaryRef makeSamples(std::vector<std::size_t> channels,
                            std::vector<SimulatedMac::Counter> counters)
{
    auto samples = std::make_unique<Samples>();
    for (std::size_t index = 0; index < channels.size(); ++index)
        samples->entries.push_back(std::make_unique<ChannelEntry>(
            mac().machine.channels[channels[index]], std::move(counters[index])));
    samples->channels = std::move(channels);
    return referenceTo<CFDictionaryRef>(samples.release());
}

std::optional<std::string> textOf(CFStringRef string)
{
    if (!string)
        return std::nullopt;
    return objectAs<String>(string).text;
}

CFMutableDictionaryRef copyChannelsInGroup(CFStringRef group, CFStringRef subgroup, std::uint64_t,
                                           std::uint64_t, std::uint64_t)
{
    const auto fault = faults().ask(Call::IOReportCopyChannelsInGroup);
    if (fault == Way::null || (!group && !subgroup))
        return nullptr;
    auto set = std::make_unique<ChannelSet>();
    const auto &channels = mac().machine.channels;
    for (std::size_t index = 0; !fault && index < channels.size(); ++index) {
        if ((!group || channels[index].group == textOf(group))
            && (!subgroup || channels[index].subgroup == textOf(subgroup)))
            set->channels.push_back(index);
    }
    return referenceTo<CFMutableDictionaryRef>(set.release());
}

int mergeChannels(CFMutableDictionaryRef into, CFDictionaryRef from, CFTypeRef)
{
    if (!into || !from || into == from || faults().ask(Call::IOReportMergeChannels))
        return badArgument;
    auto &channels = objectAs<ChannelSet>(into).channels;
    const auto &added = objectAs<ChannelSet>(from).channels;
    channels.insert(channels.end(), added.begin(), added.end());
    return 0;
}

bool isRefused(const ChannelSet &set)
{
    return std::any_of(set.channels.begin(), set.channels.end(), [](std::size_t index) {
        return mac().machine.refusedGroups.contains(mac().machine.channels[index].group);
    });
}

CFTypeRef createSubscription(void *, CFMutableDictionaryRef wanted,
                             CFMutableDictionaryRef *subscribed, std::uint64_t, CFTypeRef)
{
    if (!wanted || !subscribed || objectAs<ChannelSet>(wanted).channels.empty()
        || faults().ask(Call::IOReportCreateSubscription)
        || isRefused(objectAs<ChannelSet>(wanted)))
        return nullptr;
    auto set = std::make_unique<ChannelSet>();
    set->channels = objectAs<ChannelSet>(wanted).channels;
    *subscribed = referenceTo<CFMutableDictionaryRef>(set.release());
    return referenceTo<CFTypeRef>(new Subscription);
}

CFDictionaryRef createSamples(CFTypeRef subscription, CFMutableDictionaryRef channels, CFTypeRef)
{
    if (!subscription || !channels)
        return nullptr;
    objectAs<Subscription>(subscription);
    std::vector<std::size_t> indices = objectAs<ChannelSet>(channels).channels;
    const auto fault = faults().ask(Call::IOReportCreateSamples);
    if (fault == Way::null)
        return nullptr;
    if (fault == Way::empty)
        indices.clear();
    const auto all = mac().publishedCounters();
    std::vector<SimulatedMac::Counter> counters;
    counters.reserve(indices.size());
    for (const std::size_t index : indices)
        counters.push_back(all[index]);
    return makeSamples(std::move(indices), std::move(counters));
}

std::int64_t wrappingDifference(std::int64_t current, std::int64_t previous)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(current)
                                     - static_cast<std::uint64_t>(previous));
}

CFDictionaryRef createSamplesDelta(CFDictionaryRef previous, CFDictionaryRef current, CFTypeRef)
{
    if (!previous || !current)
        return nullptr;
    const auto &before = objectAs<Samples>(previous);
    const auto &after = objectAs<Samples>(current);
    const auto fault = faults().ask(Call::IOReportCreateSamplesDelta);
    if (fault == Way::null)
        return nullptr;
    std::vector<std::size_t> channels;
    std::vector<SimulatedMac::Counter> differences;
    for (std::size_t entry = 0; !fault && entry < after.entries.size(); ++entry) {
        if (entry >= before.channels.size() || before.channels[entry] != after.channels[entry])
            continue; // Only what is in both has a difference.
        SimulatedMac::Counter difference = after.entries[entry]->counter;
        const SimulatedMac::Counter &base = before.entries[entry]->counter;
        difference.value = wrappingDifference(difference.value, base.value);
        for (std::size_t state = 0; state < difference.residencies.size(); ++state)
            difference.residencies[state] -= base.residencies[state];
        channels.push_back(after.channels[entry]);
        differences.push_back(std::move(difference));
    }
    return makeSamples(std::move(channels), std::move(differences));
}

int iterate(CFDictionaryRef samples, int (^visit)(CFDictionaryRef))
{
    constexpr int stop = 1;
    if (!samples || faults().ask(Call::IOReportIterate))
        return badArgument;
    for (const auto &entry : objectAs<Samples>(samples).entries) {
        if (visit(referenceTo<CFDictionaryRef>(entry.get())) & stop)
            return stop;
    }
    return 0;
}

/// A text of a channel, or what the switch puts in its place.
CFStringRef channelText(Call call, CFDictionaryRef channel,
                        std::optional<std::string> (*textOf)(const Channel &))
{
    auto &entry = objectAs<ChannelEntry>(channel);
    const auto fault = faults().ask(call);
    const auto text = textOf(entry.channel);
    if (fault == Way::garbage)
        return entry.text("\xc3\xa9\xe2\x88\x9e" + std::to_string(faults().garbage()));
    return fault || !text ? nullptr : entry.text(*text);
}

CFStringRef channelGroup(CFDictionaryRef channel)
{
    return channelText(Call::IOReportChannelGetGroup, channel,
                       [](const Channel &of) { return std::optional(of.group); });
}

CFStringRef channelSubgroup(CFDictionaryRef channel)
{
    return channelText(Call::IOReportChannelGetSubGroup, channel,
                       [](const Channel &of) { return of.subgroup; });
}

CFStringRef channelName(CFDictionaryRef channel)
{
    return channelText(Call::IOReportChannelGetChannelName, channel,
                       [](const Channel &of) { return std::optional(of.name); });
}

CFStringRef channelUnit(CFDictionaryRef channel)
{
    return channelText(Call::IOReportChannelGetUnitLabel, channel,
                       [](const Channel &of) { return of.unit; });
}

std::int64_t garbageNumber()
{
    return static_cast<std::int64_t>(std::uint64_t(faults().garbage()) << 32 | faults().garbage());
}

std::int64_t simpleValue(CFDictionaryRef channel, std::int32_t unit)
{
    if (unit != 0)
        throw Misuse("the second argument is a place for the unit");
    const auto &entry = objectAs<ChannelEntry>(channel);
    const auto fault = faults().ask(Call::IOReportSimpleGetIntegerValue);
    if (fault == Way::garbage)
        return garbageNumber();
    return fault || entry.channel.format != Channel::Format::simple ? invalid : entry.counter.value;
}

std::int32_t stateCount(CFDictionaryRef channel)
{
    const auto &entry = objectAs<ChannelEntry>(channel);
    const auto fault = faults().ask(Call::IOReportStateGetCount);
    if (fault == Way::garbage)
        return static_cast<std::int32_t>(faults().garbage());
    if (fault || entry.channel.format != Channel::Format::states)
        return -1;
    return static_cast<std::int32_t>(entry.channel.states.size());
}

bool hasState(const ChannelEntry &entry, std::int32_t index)
{
    return entry.channel.format == Channel::Format::states && index >= 0
        && index < static_cast<std::int32_t>(entry.channel.states.size());
}

CFStringRef stateName(CFDictionaryRef channel, std::int32_t index)
{
    auto &entry = objectAs<ChannelEntry>(channel);
    const auto fault = faults().ask(Call::IOReportStateGetNameForIndex);
    if (fault == Way::null || !hasState(entry, index))
        return nullptr;
    if (fault == Way::garbage)
        return entry.text("\xf0\x9f\x8c\x8b" + std::to_string(faults().garbage()));
    const auto &name = entry.channel.states[static_cast<std::size_t>(index)].name;
    return name ? entry.text(*name) : nullptr;
}

std::int64_t stateResidency(CFDictionaryRef channel, std::int32_t index)
{
    const auto &entry = objectAs<ChannelEntry>(channel);
    const auto fault = faults().ask(Call::IOReportStateGetResidency);
    if (fault == Way::garbage)
        return garbageNumber();
    if (fault || !hasState(entry, index))
        return invalid;
    return entry.counter.residencies[static_cast<std::size_t>(index)];
}

struct NamedFunction {
    std::string_view name;
    void *function;
};

template <typename Function>
void *address(Function *function)
{
    return reinterpret_cast<void *>(function);
}

} // namespace

void *corvane::simulated::reportingFunction(std::string_view name)
{
    static const std::vector<NamedFunction> functions{
        {"IOReportCopyChannelsInGroup", address(copyChannelsInGroup)},
        {"IOReportMergeChannels", address(mergeChannels)},
        {"IOReportCreateSubscription", address(createSubscription)},
        {"IOReportCreateSamples", address(createSamples)},
        {"IOReportCreateSamplesDelta", address(createSamplesDelta)},
        {"IOReportIterate", address(iterate)},
        {"IOReportChannelGetGroup", address(channelGroup)},
        {"IOReportChannelGetSubGroup", address(channelSubgroup)},
        {"IOReportChannelGetChannelName", address(channelName)},
        {"IOReportChannelGetUnitLabel", address(channelUnit)},
        {"IOReportSimpleGetIntegerValue", address(simpleValue)},
        {"IOReportStateGetCount", address(stateCount)},
        {"IOReportStateGetNameForIndex", address(stateName)},
        {"IOReportStateGetResidency", address(stateResidency)},
    };
    const auto found = std::find_if(functions.begin(), functions.end(),
                                    [&](const NamedFunction &entry) { return entry.name == name; });
    return found == functions.end() ? nullptr : found->function;
}
