// The reporting library has no header and no fixed place: it is opened by path, its functions are
// bound by name, and a function that is missing means that there is no bridge. A chip of two dies
// prefixes its channels with the die; the prefix is removed here, so that a channel has the same
// name on every die.

#include "chip/IOReportBridge_mac.h"

#include "chip/ChannelName.h"
#include "platform/CFOwned_mac.h"
#include "platform/CFText_mac.h"

#include <dlfcn.h>

#include <limits>
#include <set>
#include <vector>

namespace corvane {

namespace {

struct ReportingLibrary {
    CFMutableDictionaryRef (*copyChannelsInGroup)(CFStringRef group, CFStringRef subgroup,
                                                  std::uint64_t, std::uint64_t, std::uint64_t);
    int (*mergeChannels)(CFMutableDictionaryRef into, CFDictionaryRef from, CFTypeRef);
    CFTypeRef (*createSubscription)(void *, CFMutableDictionaryRef channels,
                                    CFMutableDictionaryRef *subscribed, std::uint64_t, CFTypeRef);
    CFDictionaryRef (*createSamples)(CFTypeRef subscription, CFMutableDictionaryRef channels,
                                     CFTypeRef);
    CFDictionaryRef (*createSamplesDelta)(CFDictionaryRef from, CFDictionaryRef to, CFTypeRef);
    int (*iterate)(CFDictionaryRef samples, int (^visit)(CFDictionaryRef channel));
    CFStringRef (*channelGroup)(CFDictionaryRef channel);
    CFStringRef (*channelSubgroup)(CFDictionaryRef channel);
    CFStringRef (*channelName)(CFDictionaryRef channel);
    CFStringRef (*channelUnit)(CFDictionaryRef channel);
    std::int64_t (*simpleValue)(CFDictionaryRef channel, std::int32_t);
    std::int32_t (*stateCount)(CFDictionaryRef channel);
    CFStringRef (*stateName)(CFDictionaryRef channel, std::int32_t state);
    std::int64_t (*stateResidency)(CFDictionaryRef channel, std::int32_t state);
};

template <typename Function>
bool bind(Function &function, const char *name)
{
    function = reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, name));
    return function != nullptr;
}

bool bindAll(ReportingLibrary &library)
{
    return bind(library.copyChannelsInGroup, "IOReportCopyChannelsInGroup")
        && bind(library.mergeChannels, "IOReportMergeChannels")
        && bind(library.createSubscription, "IOReportCreateSubscription")
        && bind(library.createSamples, "IOReportCreateSamples")
        && bind(library.createSamplesDelta, "IOReportCreateSamplesDelta")
        && bind(library.iterate, "IOReportIterate")
        && bind(library.channelGroup, "IOReportChannelGetGroup")
        && bind(library.channelSubgroup, "IOReportChannelGetSubGroup")
        && bind(library.channelName, "IOReportChannelGetChannelName")
        && bind(library.channelUnit, "IOReportChannelGetUnitLabel")
        && bind(library.simpleValue, "IOReportSimpleGetIntegerValue")
        && bind(library.stateCount, "IOReportStateGetCount")
        && bind(library.stateName, "IOReportStateGetNameForIndex")
        && bind(library.stateResidency, "IOReportStateGetResidency");
}

/// Absent when a function is in neither place. The library stays open for the life of the process.
std::optional<ReportingLibrary> openReportingLibrary()
{
    constexpr int mode = RTLD_LAZY | RTLD_GLOBAL;
    ReportingLibrary library = {};
    // Newer systems no longer have the framework, only the library.
    dlopen("/System/Library/PrivateFrameworks/IOReport.framework/IOReport", mode);
    if (bindAll(library))
        return library;
    dlopen("/usr/lib/libIOReport.dylib", mode);
    if (bindAll(library))
        return library;
    return std::nullopt;
}

CFOwned<CFStringRef> makeString(const std::optional<std::string> &text)
{
    if (!text)
        return nullptr;
    return CFOwned<CFStringRef>(
        CFStringCreateWithCString(kCFAllocatorDefault, text->c_str(), kCFStringEncodingUTF8));
}

using Channels = CFOwned<CFMutableDictionaryRef>;

Channels copyChannels(const ReportingLibrary &library, const ChannelGroupRequest &request)
{
    const auto group = makeString(request.group);
    const auto subgroup = makeString(request.subgroup);
    if (!group || (request.subgroup && !subgroup))
        return nullptr;
    return Channels(library.copyChannelsInGroup(group.get(), subgroup.get(), 0, 0, 0));
}

/// The channels of all groups; null when no group has any.
Channels copyMergedChannels(const ReportingLibrary &library,
                            const std::vector<ChannelGroupRequest> &requests)
{
    Channels merged;
    for (const ChannelGroupRequest &request : requests) {
        Channels channels = copyChannels(library, request);
        if (merged && channels)
            library.mergeChannels(merged.get(), channels.get(), nullptr);
        else if (channels)
            merged = std::move(channels);
    }
    return merged;
}

/// Null when the system refuses these channels. It refuses a set of channels as a whole.
CFTypeRef createSubscription(const ReportingLibrary &library, const Channels &channels)
{
    CFMutableDictionaryRef subscribed = nullptr;
    const CFTypeRef subscription = channels
        ? library.createSubscription(nullptr, channels.get(), &subscribed, 0, nullptr)
        : nullptr;
    const Channels notNeeded(subscribed);
    return subscription;
}

/// The requests whose channels the system accepts by themselves.
std::vector<ChannelGroupRequest> acceptedRequests(const ReportingLibrary &library,
                                                  std::vector<ChannelGroupRequest> requests)
{
    std::erase_if(requests, [&library](const ChannelGroupRequest &request) {
        return !CFOwned<CFTypeRef>(createSubscription(library, copyChannels(library, request)));
    });
    return requests;
}

template <typename Visit>
void forEachChannel(const ReportingLibrary &library, CFDictionaryRef samples, const Visit &visit)
{
    const Visit *visitor = &visit; // A block would copy what a reference stands for.
    library.iterate(samples, ^(CFDictionaryRef channel) {
        (*visitor)(channel);
        return 0;
    });
}

/// Reads one channel after the other; what it returns holds until the next.
class ChannelReader {
public:
    explicit ChannelReader(const ReportingLibrary &library) : m_library(library) { }

    ReportingChannel read(CFDictionaryRef channel)
    {
        readStates(channel);
        return {.group = utf8View(m_library.channelGroup(channel), m_group).value_or(""),
                .subgroup = utf8View(m_library.channelSubgroup(channel), m_subgroup).value_or(""),
                .name = name(channel),
                .unit = utf8View(m_library.channelUnit(channel), m_unit),
                .value = m_states.empty() ? m_library.simpleValue(channel, 0)
                                          : std::numeric_limits<std::int64_t>::min(),
                .states = m_states};
    }

    std::string_view name(CFDictionaryRef channel)
    {
        return utf8View(m_library.channelName(channel), m_name).value_or("");
    }

private:
    void readStates(CFDictionaryRef channel)
    {
        constexpr std::int32_t mostStates = 1024; // More is not a count.
        std::int32_t count = m_library.stateCount(channel);
        if (count < 0 || count > mostStates)
            count = 0;
        m_states.resize(static_cast<std::size_t>(count));
        if (m_stateNames.size() < m_states.size())
            m_stateNames.resize(m_states.size());
        for (std::int32_t index = 0; index < count; ++index) {
            const auto state = static_cast<std::size_t>(index);
            const CFStringRef stateName = m_library.stateName(channel, index);
            m_states[state] = {.name = utf8View(stateName, m_stateNames[state]).value_or(""),
                               .residency = m_library.stateResidency(channel, index)};
        }
    }

    const ReportingLibrary &m_library;
    std::string m_group;
    std::string m_subgroup;
    std::string m_name;
    std::string m_unit;
    std::vector<std::string> m_stateNames;
    std::vector<ChannelState> m_states;
};

} // namespace

struct IOReportBridge::Sample {
    CFOwned<CFDictionaryRef> channels;
};

void IOReportBridge::SampleDeleter::operator()(Sample *sample) const
{
    delete sample;
}

struct IOReportBridge::Subscription {
    ReportingLibrary library;
    Channels channels;
    CFTypeRef reference; ///< Not owned: closing it is left to the end of the process.
    ChannelReader reader{library};
};

std::unique_ptr<IOReportBridge> IOReportBridge::withChannelGroups(
    const std::vector<ChannelGroupRequest> &requests)
{
    const auto library = openReportingLibrary();
    if (!library)
        return nullptr;
    Channels channels = copyMergedChannels(*library, requests);
    if (!channels)
        return nullptr;
    CFTypeRef reference = createSubscription(*library, channels);
    if (!reference) {
        channels = copyMergedChannels(*library, acceptedRequests(*library, requests));
        reference = createSubscription(*library, channels);
    }
    if (!reference)
        return nullptr;
    return std::unique_ptr<IOReportBridge>(new IOReportBridge(
        std::unique_ptr<Subscription>(new Subscription{*library, std::move(channels), reference})));
}

IOReportBridge::IOReportBridge(std::unique_ptr<Subscription> subscription)
    : m_subscription(std::move(subscription))
{
}

IOReportBridge::~IOReportBridge() = default;

IOReportBridge::SamplePtr IOReportBridge::takeSample()
{
    m_thread.check();
    CFOwned<CFDictionaryRef> channels(m_subscription->library.createSamples(
        m_subscription->reference, m_subscription->channels.get(), nullptr));
    return SamplePtr(channels ? new Sample{std::move(channels)} : nullptr);
}

IOReportBridge::SamplePtr IOReportBridge::delta(const Sample *from, const Sample *to) const
{
    if (!from || !to)
        return nullptr;
    CFOwned<CFDictionaryRef> channels(m_subscription->library.createSamplesDelta(
        from->channels.get(), to->channels.get(), nullptr));
    return SamplePtr(channels ? new Sample{std::move(channels)} : nullptr);
}

void IOReportBridge::iterate(const Sample *delta,
                             const std::function<void(const ReportingChannel &)> &visit) const
{
    if (!delta)
        return;
    const ReportingLibrary &library = m_subscription->library;
    ChannelReader &reader = m_subscription->reader;
    const CFDictionaryRef channels = delta->channels.get();

    // All names, collected when a name turns up that has a die: few chips have such.
    std::optional<std::set<std::string, std::less<>>> names;
    const auto isName = [&](std::string_view plainName) {
        if (!names) {
            names.emplace();
            ChannelReader nameReader(library);
            forEachChannel(library, channels, [&](CFDictionaryRef channel) {
                names->emplace(nameReader.name(channel));
            });
        }
        return names->contains(plainName);
    };
    forEachChannel(library, channels, [&](CFDictionaryRef entry) {
        ReportingChannel channel = reader.read(entry);
        const std::string_view plainName = withoutDie(channel.name);
        // A total beside the dies has the plain name already: nothing may count twice.
        if (plainName.size() != channel.name.size() && !isName(plainName))
            channel.name = plainName;
        visit(channel);
    });
}

} // namespace corvane
