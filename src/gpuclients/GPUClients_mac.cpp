#include "gpuclients/GPUClients.h"

#include "gpuclients/DrmLoads.h"
#include "platform/CFText_mac.h"
#include "platform/KernelText.h"
#include "platform/RegistryEntry_mac.h"
#include "threads/Mutex.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace corvane {

namespace {

constexpr char gpuName[] = "gpu"; ///< A Mac has one.

/// The number in "pid 123, name"; absent for any other text.
std::optional<std::int32_t> pidIn(std::string_view creator)
{
    constexpr std::string_view mark = "pid ";
    if (!creator.starts_with(mark))
        return std::nullopt;
    creator.remove_prefix(mark.size());
    const auto pid = parseUnsigned(creator.substr(0, creator.find(',')));
    return pid && *pid > 0 && *pid <= INT32_MAX ? std::optional(static_cast<std::int32_t>(*pid))
                                                : std::nullopt;
}

std::optional<std::int32_t> creatorOf(const RegistryEntry &client)
{
    const auto creator = client.property("IOUserClientCreator");
    if (!creator || CFGetTypeID(creator.get()) != CFStringGetTypeID())
        return std::nullopt;
    std::string storage;
    const auto text = utf8View(static_cast<CFStringRef>(creator.get()), storage);
    return text ? pidIn(*text) : std::nullopt;
}

/// Nanoseconds for which the GPU worked for all queues of a client. Absent when it does not tell.
std::optional<std::uint64_t> gpuTimeOf(const RegistryEntry &client)
{
    constexpr CFIndex mostQueues = 256;
    const auto usage = client.property("AppUsage");
    if (!usage || CFGetTypeID(usage.get()) != CFArrayGetTypeID())
        return std::nullopt;
    const auto queues = static_cast<CFArrayRef>(usage.get());
    std::optional<std::uint64_t> sum;
    for (CFIndex place = 0; place < std::min(CFArrayGetCount(queues), mostQueues); ++place) {
        const auto time =
            numberIn(CFArrayGetValueAtIndex(queues, place), CFSTR("accumulatedGPUTime"));
        if (time)
            sum = sum.value_or(0) + *time;
    }
    return sum;
}

/// By process, of those that were asked for.
std::map<std::int32_t, std::uint64_t> gpuTimes(const std::vector<std::int32_t> &pids)
{
    constexpr std::size_t mostClients = 1024;
    std::map<std::int32_t, std::uint64_t> times;
    for (const RegistryEntry &client :
         RegistryEntry::ofClass("IOAccelerator").children(mostClients)) {
        const auto pid = client.isOfClass("AGXDeviceUserClient") ? creatorOf(client) : std::nullopt;
        if (!pid || std::ranges::find(pids, *pid) == pids.end())
            continue;
        if (const auto time = gpuTimeOf(client))
            times[*pid] += *time;
    }
    return times;
}

} // namespace

struct GPUClients::System {
    std::function<double()> clock;
    Mutex mutex = {};
    DrmLoads loads GUARDED_BY(mutex) = {};
};

GPUClients::GPUClients(std::shared_ptr<GPUHandOver>, std::string, std::function<double()> clock)
    : m_system(new System{.clock = std::move(clock)})
{
}

GPUClients::~GPUClients() = default;

std::vector<GPUUse> GPUClients::told()
{
    return {};
}

std::vector<GPUUse> GPUClients::used(std::vector<GPUUse> told,
                                     const std::vector<std::int32_t> &pids)
{
    System &system = *m_system;
    const auto times = gpuTimes(pids);
    const double now = system.clock();
    const MutexLock lock(system.mutex);
    for (const auto &[pid, time] : times) {
        const auto shares = system.loads.add({.address = gpuName,
                                              .id = std::to_string(pid),
                                              .engines = {{.name = gpuName, .busy = time}}},
                                             now);
        const auto share = shares.find(gpuName);
        if (share != shares.end())
            told.push_back({gpuName, {.pid = pid, .busyFraction = share->second}});
    }
    system.loads.forgetOld(now);
    return told;
}

/// The registry answers at once.
bool GPUClients::readsFiles() const
{
    return false;
}

} // namespace corvane
