#include "simulated_mac/Faults.h"

#include <utility>

namespace corvane::simulated {

const std::vector<WaysOfCall> &waysToFail()
{
    using enum Way;
#define CORVANE_WAYS(call, ...)                                                                    \
    {                                                                                              \
        Call::call, #call,                                                                         \
        {                                                                                          \
            __VA_ARGS__                                                                            \
        }                                                                                          \
    }
    static const std::vector<WaysOfCall> calls{
        CORVANE_WAYS(dlopen, null),
        CORVANE_WAYS(dlsym, null),
        CORVANE_WAYS(CFStringCreateWithCString, null),
        CORVANE_WAYS(CFStringGetCString, error),
        CORVANE_WAYS(CFStringGetCStringPtr, null),
        CORVANE_WAYS(CFNumberCreate, null),
        CORVANE_WAYS(CFDictionaryCreate, null),
        CORVANE_WAYS(CFDataGetBytePtr, null),
        CORVANE_WAYS(CFNumberGetValue, error, garbage),
        CORVANE_WAYS(IOServiceMatching, null),
        CORVANE_WAYS(IOServiceNameMatching, null),
        CORVANE_WAYS(IOServiceGetMatchingService, null),
        CORVANE_WAYS(IORegistryEntryCreateCFProperty, null, wrongType, empty, shortAnswer, garbage),
        CORVANE_WAYS(IORegistryEntryGetChildIterator, error),
        CORVANE_WAYS(IOIteratorNext, null),
        CORVANE_WAYS(IOHIDEventSystemClientCreate, null),
        CORVANE_WAYS(IOHIDEventSystemClientSetMatching, error),
        CORVANE_WAYS(IOHIDEventSystemClientCopyServices, null, empty),
        CORVANE_WAYS(IOHIDServiceClientCopyProperty, null, wrongType, empty, garbage),
        CORVANE_WAYS(IOHIDServiceClientCopyEvent, null),
        CORVANE_WAYS(IOHIDEventGetFloatValue, garbage),
        CORVANE_WAYS(IOReportCopyChannelsInGroup, null, empty),
        CORVANE_WAYS(IOReportMergeChannels, error),
        CORVANE_WAYS(IOReportCreateSubscription, null),
        CORVANE_WAYS(IOReportCreateSamples, null, empty),
        CORVANE_WAYS(IOReportCreateSamplesDelta, null, empty),
        CORVANE_WAYS(IOReportIterate, error),
        CORVANE_WAYS(IOReportChannelGetGroup, null, garbage),
        CORVANE_WAYS(IOReportChannelGetSubGroup, null, garbage),
        CORVANE_WAYS(IOReportChannelGetChannelName, null, garbage),
        CORVANE_WAYS(IOReportChannelGetUnitLabel, null, garbage),
        CORVANE_WAYS(IOReportSimpleGetIntegerValue, error, garbage),
        CORVANE_WAYS(IOReportStateGetCount, error, garbage),
        CORVANE_WAYS(IOReportStateGetNameForIndex, null, garbage),
        CORVANE_WAYS(IOReportStateGetResidency, error, garbage),
        CORVANE_WAYS(mach_host_self, null),
        CORVANE_WAYS(host_page_size, error),
        CORVANE_WAYS(host_statistics64, error, shortAnswer, garbage),
        CORVANE_WAYS(host_processor_info, error, null, shortAnswer, garbage),
        CORVANE_WAYS(sysctlbyname, error, shortAnswer, garbage),
        CORVANE_WAYS(sysctl, error, shortAnswer, garbage),
        CORVANE_WAYS(proc_listpids, error, shortAnswer, garbage),
        CORVANE_WAYS(proc_pid_rusage, error, garbage),
        CORVANE_WAYS(proc_name, error, garbage),
        CORVANE_WAYS(proc_pidinfo, error, garbage),
        CORVANE_WAYS(proc_pidfdinfo, error, garbage),
        CORVANE_WAYS(pthread_set_qos_class_self_np, error),
    };
#undef CORVANE_WAYS
    return calls;
}

const char *name(Way way)
{
    switch (way) {
    case Way::null:
        return "nothing";
    case Way::error:
        return "an error";
    case Way::empty:
        return "an empty answer";
    case Way::wrongType:
        return "another type";
    case Way::shortAnswer:
        return "a short answer";
    case Way::garbage:
        return "garbage";
    }
    return "";
}

void Faults::failOnce(Call call, Way way, int use)
{
    const MutexLock lock(m_mutex);
    plan(call).once = way;
    plan(call).usesUntilOnce = use;
}

void Faults::failAlways(Call call, Way way)
{
    const MutexLock lock(m_mutex);
    plan(call).always = way;
}

void Faults::failRandomly(std::uint32_t seed, double probability)
{
    const MutexLock lock(m_mutex);
    m_random.seed(seed);
    m_chance = probability;
}

void Faults::clear()
{
    const MutexLock lock(m_mutex);
    m_plans = {};
    m_chance.reset();
    m_random.seed();
}

std::optional<Way> Faults::ask(Call call)
{
    const MutexLock lock(m_mutex);
    Plan &asked = plan(call);
    ++asked.uses;
    if (asked.once && --asked.usesUntilOnce == 0)
        return std::exchange(asked.once, std::nullopt);
    if (asked.always)
        return asked.always;
    if (!m_chance || std::uniform_real_distribution<double>()(m_random) >= *m_chance)
        return std::nullopt;
    const std::vector<Way> &ways = waysToFail().at(static_cast<std::size_t>(call)).ways;
    return ways[m_random() % ways.size()];
}

int Faults::uses(Call call) const
{
    const MutexLock lock(m_mutex);
    return m_plans[static_cast<std::size_t>(call)].uses;
}

std::uint32_t Faults::garbage()
{
    const MutexLock lock(m_mutex);
    return static_cast<std::uint32_t>(m_random());
}

Faults &faults()
{
    static Faults switches;
    return switches;
}

} // namespace corvane::simulated
