#include "memory/MemorySampler.h"

#include "threads/MainThread.h"

#include <QtGlobal>

#include <algorithm>

namespace corvane {

namespace {

std::uint64_t product(std::uint64_t pages, std::uint64_t pageSize)
{
    std::uint64_t bytes = 0;
    if (__builtin_mul_overflow(pages, pageSize, &bytes))
        qFatal("memory counters out of range");
    return bytes;
}

std::uint64_t sum(std::uint64_t left, std::uint64_t right)
{
    std::uint64_t bytes = 0;
    if (__builtin_add_overflow(left, right, &bytes))
        qFatal("memory counters out of range");
    return bytes;
}

MemoryPressure pressure(std::optional<std::int32_t> level)
{
    if (level == 2)
        return MemoryPressure::warning;
    if (level == 4)
        return MemoryPressure::critical;
    return MemoryPressure::normal;
}

} // namespace

MemorySnapshot MemorySampler::sample()
{
    assertMainThread();
    return snapshot(readMemoryCounters());
}

MemorySnapshot MemorySampler::snapshot(const MemoryCounters &counters)
{
    MemorySnapshot memory{.total = counters.totalBytes.value_or(0)};
    if (!counters.pages)
        return memory;

    const MemoryCounters::Pages &pages = *counters.pages;
    const std::uint64_t pageSize = counters.pageSize;
    const std::uint64_t inactive = product(pages.inactive, pageSize);
    memory.free = product(pages.free, pageSize);
    memory.active = product(pages.active, pageSize);
    memory.wired = product(pages.wired, pageSize);
    memory.compressed = product(pages.compressor, pageSize);
    memory.cached = std::min(
        sum(product(pages.purgeable, pageSize), product(pages.external, pageSize)), inactive);
    memory.appMemory = sum(sum(memory.wired, memory.active), memory.compressed);
    // Inactive memory that is not cache belongs to processes: it counts as used.
    memory.used = std::min(memory.total, sum(memory.appMemory, inactive - memory.cached));

    if (counters.swap) {
        memory.swapTotal = counters.swap->total;
        memory.swapUsed = counters.swap->used;
    }
    memory.pressure = pressure(counters.pressureLevel);
    memory.available = counters.availableBytes;
    memory.gpuLimit = counters.gpuLimitBytes;
    memory.gpuUsed = counters.gpuUsedBytes;
    return memory;
}

} // namespace corvane
