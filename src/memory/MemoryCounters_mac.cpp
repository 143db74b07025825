#include "memory/MemoryCounters.h"

#include "platform/Plausible.h"
#include "platform/RegistryEntry_mac.h"

#include <mach/mach.h>
#include <sys/sysctl.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace corvane {

namespace {

template <typename Value>
std::optional<Value> systemControl(const char *name)
{
    Value value = {};
    std::size_t size = sizeof value;
    if (sysctlbyname(name, &value, &size, nullptr, 0) != 0 || size != sizeof value)
        return std::nullopt;
    return value;
}

/// The host port, requested once: each call would add a right to it.
mach_port_t host()
{
    static const mach_port_t port = mach_host_self();
    return port;
}

std::uint64_t pageSize()
{
    static const std::uint64_t size = [] {
        vm_size_t bytes = 0;
        return host_page_size(host(), &bytes) == KERN_SUCCESS ? std::uint64_t(bytes) : 0;
    }();
    return size;
}

std::optional<MemoryCounters::Pages> readPages()
{
    // The kernel's record has grown with the system, and a newer kernel fills as many words as the
    // caller has room for, whatever the header at build time declared: hence a buffer of words.
    constexpr mach_msg_type_number_t words = 40;
    alignas(8) std::array<integer_t, words> buffer = {};
    mach_msg_type_number_t count = words;
    constexpr std::size_t needed =
        offsetof(vm_statistics64, external_page_count) + sizeof(natural_t);
    if (host_statistics64(host(), HOST_VM_INFO64, buffer.data(), &count) != KERN_SUCCESS
        || count * sizeof(integer_t) < needed)
        return std::nullopt;

    const auto field = [&buffer](std::size_t offset) {
        natural_t pages = 0;
        std::memcpy(&pages, reinterpret_cast<const char *>(buffer.data()) + offset, sizeof pages);
        return std::uint64_t(pages);
    };
    return MemoryCounters::Pages{
        .free = field(offsetof(vm_statistics64, free_count)),
        .active = field(offsetof(vm_statistics64, active_count)),
        .inactive = field(offsetof(vm_statistics64, inactive_count)),
        .wired = field(offsetof(vm_statistics64, wire_count)),
        .compressor = field(offsetof(vm_statistics64, compressor_page_count)),
        .purgeable = field(offsetof(vm_statistics64, purgeable_count)),
        .external = field(offsetof(vm_statistics64, external_page_count)),
    };
}

std::optional<MemoryCounters::Swap> readSwap()
{
    const auto usage = systemControl<xsw_usage>("vm.swapusage");
    if (!usage)
        return std::nullopt;
    return MemoryCounters::Swap{.total = usage->xsu_total, .used = usage->xsu_used};
}

/// What an administrator has set as the part of the memory that the GPU may use; 0 is the system's
/// own choice.
std::optional<std::uint64_t> gpuLimit()
{
    const auto mebibytes = systemControl<std::int32_t>("iogpu.wired_limit_mb");
    if (!mebibytes || *mebibytes <= 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(*mebibytes) << 20;
}

/// Driver buffers of all processes, which are part of the memory in use.
std::optional<std::uint64_t> gpuUsed()
{
    const auto statistics =
        RegistryEntry::ofClass("IOAccelerator").property("PerformanceStatistics");
    const auto bytes = numberIn(statistics.get(), CFSTR("In use system memory"));
    return bytes && *bytes <= largestByteCount ? bytes : std::nullopt;
}

} // namespace

MemoryCounters readMemoryCounters()
{
    return {.totalBytes = systemControl<std::uint64_t>("hw.memsize"),
            .pageSize = pageSize(),
            .pages = readPages(),
            .swap = readSwap(),
            .pressureLevel = systemControl<std::int32_t>("kern.memorystatus_vm_pressure_level"),
            .gpuLimitBytes = gpuLimit(),
            .gpuUsedBytes = gpuUsed()};
}

} // namespace corvane
