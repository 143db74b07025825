#pragma once

#include "threads/Mutex.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace corvane::simulated {

/// Every function of the simulated Mac that can be made to fail.
enum class Call {
    dlopen,
    dlsym,
    CFStringCreateWithCString,
    CFStringGetCString,
    CFStringGetCStringPtr,
    CFNumberCreate,
    CFDictionaryCreate,
    CFDataGetBytePtr,
    CFNumberGetValue,
    IOServiceMatching,
    IOServiceNameMatching,
    IOServiceGetMatchingService,
    IORegistryEntryCreateCFProperty,
    IORegistryEntryGetChildIterator,
    IOIteratorNext,
    IOHIDEventSystemClientCreate,
    IOHIDEventSystemClientSetMatching,
    IOHIDEventSystemClientCopyServices,
    IOHIDServiceClientCopyProperty,
    IOHIDServiceClientCopyEvent,
    IOHIDEventGetFloatValue,
    IOReportCopyChannelsInGroup,
    IOReportMergeChannels,
    IOReportCreateSubscription,
    IOReportCreateSamples,
    IOReportCreateSamplesDelta,
    IOReportIterate,
    IOReportChannelGetGroup,
    IOReportChannelGetSubGroup,
    IOReportChannelGetChannelName,
    IOReportChannelGetUnitLabel,
    IOReportSimpleGetIntegerValue,
    IOReportStateGetCount,
    IOReportStateGetNameForIndex,
    IOReportStateGetResidency,
    mach_host_self,
    host_page_size,
    host_statistics64,
    host_processor_info,
    sysctlbyname,
    sysctl,
    proc_listpids,
    proc_pid_rusage,
    proc_name,
    proc_pidinfo,
    proc_pidfdinfo,
    pthread_set_qos_class_self_np,
};
inline constexpr std::size_t callCount =
    static_cast<std::size_t>(Call::pthread_set_qos_class_self_np) + 1;

/// How a call answers when it fails.
enum class Way {
    null,        ///< No object, no handle, no array.
    error,       ///< The interface's own error code or out-of-range value.
    empty,       ///< An object with nothing in it.
    wrongType,   ///< An object of another type.
    shortAnswer, ///< Success, with less than was asked for.
    garbage,     ///< Success, with bytes or numbers of no meaning.
};

struct WaysOfCall {
    Call call;
    const char *name;
    std::vector<Way> ways;
};

/// What each call can be made to answer, for tests that go through all of them.
const std::vector<WaysOfCall> &waysToFail();
const char *name(Way way);

/// The switch. Set by a test between calls, asked by every simulated function; any thread.
class Faults {
public:
    /// Fails the `use`-th use of the call from now on, once.
    void failOnce(Call call, Way way, int use = 1);
    void failAlways(Call call, Way way);

    /// Lets every use of every call fail with this probability, in any of its ways.
    void failRandomly(std::uint32_t seed, double probability);

    void clear();

    /// How this use of the call is to fail; nothing: not at all.
    std::optional<Way> ask(Call call);

    /// Uses of the call since the switch was cleared.
    int uses(Call call) const;

    /// A number of no meaning, the same in every run.
    std::uint32_t garbage();

private:
    struct Plan {
        std::optional<Way> always = {};
        std::optional<Way> once = {};
        int usesUntilOnce = 0;
        int uses = 0;
    };
    Plan &plan(Call call) REQUIRES(m_mutex) { return m_plans[static_cast<std::size_t>(call)]; }

    mutable Mutex m_mutex;
    std::array<Plan, callCount> m_plans GUARDED_BY(m_mutex) = {};
    std::optional<double> m_chance GUARDED_BY(m_mutex); ///< Of a random failure.
    std::mt19937 m_random GUARDED_BY(m_mutex);
};

Faults &faults();

} // namespace corvane::simulated
