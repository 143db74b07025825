// One chip sample on the simulated Max with its 300 channels, as a ratio to the bare calls of the
// reporting library in the same run: a sample, a difference and a walk that asks for every text and
// number and does nothing with them. What the simulation itself takes is in both.

#include "Ratio.h"
#include "chip/ChipSource.h"
#include "simulated_mac/SimulatedMac.h"

#include <dlfcn.h>

using namespace corvane;
using namespace corvane::simulated;

namespace {

template <typename Function>
Function *function(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_DEFAULT, name));
}

void readBytes(CFStringRef string)
{
    if (string)
        benchmark::DoNotOptimize(CFStringGetCStringPtr(string, kCFStringEncodingUTF8));
}

/// The calls that no client of the library can do without.
class BareCalls {
public:
    BareCalls()
    {
        dlopen("/usr/lib/libIOReport.dylib", RTLD_LAZY | RTLD_GLOBAL);
        for (const auto &[group, subgroup] :
             {std::pair<const char *, const char *>{"Energy Model", nullptr},
              {"GPU Stats", nullptr},
              {"CPU Stats", "CPU Complex Performance States"}}) {
            const CFMutableDictionaryRef channels = function<CFMutableDictionaryRef(
                CFStringRef, CFStringRef, std::uint64_t, std::uint64_t, std::uint64_t)>(
                "IOReportCopyChannelsInGroup")(
                CFSimulatedConstantString(group),
                subgroup ? CFSimulatedConstantString(subgroup) : nullptr, 0, 0, 0);
            if (!m_channels) {
                m_channels = channels;
                continue;
            }
            function<int(CFMutableDictionaryRef, CFDictionaryRef, CFTypeRef)>(
                "IOReportMergeChannels")(m_channels, channels, nullptr);
            CFRelease(channels);
        }
        CFMutableDictionaryRef subscribed = nullptr;
        m_subscription = function<CFTypeRef(void *, CFMutableDictionaryRef,
                                            CFMutableDictionaryRef *, std::uint64_t, CFTypeRef)>(
            "IOReportCreateSubscription")(nullptr, m_channels, &subscribed, 0, nullptr);
        CFRelease(subscribed);
        m_sample = function<CFDictionaryRef(CFTypeRef, CFMutableDictionaryRef, CFTypeRef)>(
            "IOReportCreateSamples");
        m_difference = function<CFDictionaryRef(CFDictionaryRef, CFDictionaryRef, CFTypeRef)>(
            "IOReportCreateSamplesDelta");
        m_iterate = function<int(CFDictionaryRef, int (^)(CFDictionaryRef))>("IOReportIterate");
        for (const char *name : {"IOReportChannelGetGroup", "IOReportChannelGetSubGroup",
                                 "IOReportChannelGetChannelName", "IOReportChannelGetUnitLabel"})
            m_texts.push_back(function<CFStringRef(CFDictionaryRef)>(name));
        m_stateCount = function<std::int32_t(CFDictionaryRef)>("IOReportStateGetCount");
        m_stateName =
            function<CFStringRef(CFDictionaryRef, std::int32_t)>("IOReportStateGetNameForIndex");
        m_residency =
            function<std::int64_t(CFDictionaryRef, std::int32_t)>("IOReportStateGetResidency");
        m_value =
            function<std::int64_t(CFDictionaryRef, std::int32_t)>("IOReportSimpleGetIntegerValue");
        m_last = sample();
    }

    ~BareCalls()
    {
        CFRelease(m_last);
        CFRelease(m_subscription);
        CFRelease(m_channels);
    }

    /// Walks the channels of the time since the last call; how many there were.
    int walk()
    {
        const CFDictionaryRef now = sample();
        const CFDictionaryRef delta = m_difference(m_last, now, nullptr);
        __block int channels = 0;
        m_iterate(delta, ^(CFDictionaryRef channel) {
            ++channels;
            for (const auto &text : m_texts)
                readBytes(text(channel));
            const std::int32_t states = m_stateCount(channel);
            if (states < 1)
                benchmark::DoNotOptimize(m_value(channel, 0));
            for (std::int32_t state = 0; state < states; ++state) {
                readBytes(m_stateName(channel, state));
                benchmark::DoNotOptimize(m_residency(channel, state));
            }
            return 0;
        });
        CFRelease(delta);
        CFRelease(m_last);
        m_last = now;
        return channels;
    }

private:
    CFDictionaryRef sample() { return m_sample(m_subscription, m_channels, nullptr); }

    CFMutableDictionaryRef m_channels = nullptr;
    CFTypeRef m_subscription = nullptr;
    CFDictionaryRef m_last = nullptr;
    CFDictionaryRef (*m_sample)(CFTypeRef, CFMutableDictionaryRef, CFTypeRef) = nullptr;
    CFDictionaryRef (*m_difference)(CFDictionaryRef, CFDictionaryRef, CFTypeRef) = nullptr;
    int (*m_iterate)(CFDictionaryRef, int (^)(CFDictionaryRef)) = nullptr;
    std::vector<CFStringRef (*)(CFDictionaryRef)> m_texts;
    std::int32_t (*m_stateCount)(CFDictionaryRef) = nullptr;
    CFStringRef (*m_stateName)(CFDictionaryRef, std::int32_t) = nullptr;
    std::int64_t (*m_residency)(CFDictionaryRef, std::int32_t) = nullptr;
    std::int64_t (*m_value)(CFDictionaryRef, std::int32_t) = nullptr;
};

void chipSample(benchmark::State &state)
{
    mac().boot(maxM4());
    const ChipSource chip = openChipSource([] { return mac().clock(); });
    BareCalls bare;
    const auto sample = [&chip] {
        mac().advance(1);
        benchmark::DoNotOptimize(chip());
    };
    compare(state, sample, [&] {
        if (bare.walk() != 300)
            state.SkipWithError("not 300 channels");
    });
}
BENCHMARK(chipSample)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
