#include "simulated_mac/SimulatedMac.h"
#include "threads/Mutex.h"

#include <mach/mach.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>

using namespace corvane::simulated;

namespace {

constexpr mach_port_t hostPort = 0x0b03;
constexpr mach_port_t taskPort = 0x0203;
constexpr std::size_t longestStatistics = 62;

/// Blocks that the kernel put into the caller's memory, with their sizes in bytes.
struct Blocks {
    corvane::Mutex mutex;
    std::map<vm_address_t, std::pair<std::unique_ptr<integer_t[]>, vm_size_t>> live
        GUARDED_BY(mutex);
};

Blocks &blocks()
{
    static Blocks handedOut;
    return handedOut;
}

integer_t *newBlock(std::size_t words)
{
    auto memory = std::make_unique<integer_t[]>(words);
    integer_t *address = memory.get();
    Blocks &all = blocks();
    const corvane::MutexLock lock(all.mutex);
    all.live[reinterpret_cast<vm_address_t>(address)] = {std::move(memory),
                                                         words * sizeof(integer_t)};
    ++ledger().memoryBlocks;
    return address;
}

vm_statistics64 statistics(const Machine::Pages &pages)
{
    vm_statistics64 record = {};
    record.free_count = pages.free;
    record.active_count = pages.active;
    record.inactive_count = pages.inactive;
    record.wire_count = pages.wired;
    record.purgeable_count = pages.purgeable;
    record.compressor_page_count = pages.compressor;
    record.external_page_count = pages.external;
    // Neighbours, so that a field read at a wrong place shows.
    record.speculative_count = 0xbad0001;
    record.throttled_count = 0xbad0002;
    record.internal_page_count = 0xbad0003;
    record.zero_fill_count = 0xbad0004bad0005;
    return record;
}

} // namespace

mach_port_t mach_task_self_ = taskPort;

mach_port_t mach_host_self()
{
    if (faults().ask(Call::mach_host_self))
        return 0;
    ++ledger().hostRights;
    return hostPort;
}

kern_return_t host_page_size(host_t host, vm_size_t *size)
{
    if (host != hostPort || faults().ask(Call::host_page_size))
        return KERN_INVALID_ARGUMENT;
    *size = mac().machine.pageSize;
    return KERN_SUCCESS;
}

kern_return_t host_statistics64(host_t host, host_flavor_t flavor, host_info64_t info,
                                mach_msg_type_number_t *count)
{
    constexpr mach_msg_type_number_t firstRevision = 24;
    const auto fault = faults().ask(Call::host_statistics64);
    if (host != hostPort)
        return KERN_INVALID_HOST;
    if (flavor != HOST_VM_INFO64)
        return KERN_INVALID_ARGUMENT;
    if (fault == Way::error)
        return MIG_ARRAY_TOO_LARGE;
    if (*count < firstRevision)
        return KERN_FAILURE;

    // The largest revision that both sides know.
    std::array<integer_t, longestStatistics> words = {};
    const vm_statistics64 record = statistics(mac().machine.pages);
    std::memcpy(words.data(), &record, sizeof record);
    mach_msg_type_number_t filled = firstRevision;
    for (const mach_msg_type_number_t revision : {38U, 40U, 62U}) {
        if (revision <= *count && revision <= mac().machine.statisticsWords)
            filled = revision;
    }
    if (fault == Way::shortAnswer)
        filled = firstRevision;
    for (integer_t &word : words)
        word = fault == Way::garbage ? static_cast<integer_t>(faults().garbage()) : word;
    std::copy_n(words.begin(), filled, info);
    *count = filled;
    return KERN_SUCCESS;
}

kern_return_t host_processor_info(host_t host, processor_flavor_t flavor, natural_t *processors,
                                  processor_info_array_t *info, mach_msg_type_number_t *count)
{
    const auto fault = faults().ask(Call::host_processor_info);
    if (host != hostPort || flavor != PROCESSOR_CPU_LOAD_INFO)
        return KERN_INVALID_ARGUMENT;
    if (fault == Way::error) {
        // A kernel that fails leaves the places as they are; one that fails late may not.
        *info = reinterpret_cast<integer_t *>(0xdead0);
        return KERN_RESOURCE_SHORTAGE;
    }
    const auto &ticks = mac().ticks();
    *processors = static_cast<natural_t>(ticks.size());
    *count = static_cast<mach_msg_type_number_t>(ticks.size() * CPU_STATE_MAX);
    *info = nullptr;
    if (fault == Way::null)
        return KERN_SUCCESS;
    if (fault == Way::shortAnswer)
        *count = *count / 2 + 1;
    *info = newBlock(*count);
    for (std::size_t word = 0; word < *count; ++word) {
        const std::uint32_t value = ticks[word / CPU_STATE_MAX][word % CPU_STATE_MAX];
        (*info)[word] = static_cast<integer_t>(fault == Way::garbage ? faults().garbage() : value);
    }
    return KERN_SUCCESS;
}

kern_return_t vm_deallocate(vm_map_t task, vm_address_t address, vm_size_t size)
{
    Blocks &all = blocks();
    const corvane::MutexLock lock(all.mutex);
    const auto block = all.live.find(address);
    if (task != taskPort || block == all.live.end() || block->second.second != size)
        throw Misuse("memory that the kernel did not hand out, or not with this size");
    all.live.erase(block);
    --ledger().memoryBlocks;
    return KERN_SUCCESS;
}
