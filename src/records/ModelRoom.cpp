#include "records/ModelRoom.h"

#include "records/MachineParts.h"
#include "records/MachineTotals.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr std::uint64_t difference(std::uint64_t whole, std::uint64_t part)
{
    return whole > part ? whole - part : 0;
}

/// The part of a Mac's memory that its GPU may use, unless an administrator has set another.
std::uint64_t usualGPULimit(std::uint64_t total)
{
    constexpr std::uint64_t smallMac = std::uint64_t(36) << 30;
    return total <= smallMac ? total / 3 * 2 : total / 4 * 3;
}

std::optional<ModelRoom> roomOfMac(const MemorySnapshot &memory)
{
    if (!memory.gpuUsed)
        return std::nullopt;
    const std::uint64_t limit =
        std::min(memory.gpuLimit.value_or(usualGPULimit(memory.total)), memory.total);
    return ModelRoom{
        .place = ModelRoom::Place::unified,
        .free = std::min(difference(limit, *memory.gpuUsed), difference(memory.total, memory.used)),
        .total = limit,
        .used = *memory.gpuUsed};
}

/// Absent where the card does not tell all that is in use of it.
std::optional<ModelRoom> roomOfCard(const GPUCoverage &card, const std::optional<ChipReading> &chip)
{
    const GPUMetrics *metrics = metricsOf(card, chip);
    if (card.memory != Coverage::known || !card.memoryTotal || !metrics || !metrics->memoryUsed
        || metrics->memoryIsLowerBound)
        return std::nullopt;
    return ModelRoom{.place = ModelRoom::Place::card,
                     .free = difference(*card.memoryTotal, *metrics->memoryUsed),
                     .total = *card.memoryTotal,
                     .used = *metrics->memoryUsed};
}

/// The largest of the cards; of equal ones the first.
std::optional<ModelRoom> roomOfCards(const SystemMetrics &sample)
{
    std::optional<ModelRoom> largest;
    int number = 0;
    for (const GPUCoverage &gpu : coverageOf(sample).gpus) {
        if (!isGraphicsCard(gpu))
            continue;
        auto room = roomOfCard(gpu, sample.chip);
        if (room && (!largest || room->free > largest->free)) {
            room->gpu = number;
            largest = room;
        }
        ++number;
    }
    return largest;
}

/// Memory that integrated GPUs have for themselves and do not use.
std::uint64_t ownFreeMemory(const SystemMetrics &sample)
{
    std::uint64_t bytes = 0;
    for (const GPUCoverage &gpu : coverageOf(sample).gpus) {
        const GPUMetrics *metrics = metricsOf(gpu, sample.chip);
        if (metrics && gpu.memoryOwn && metrics->memoryOwnUsed)
            bytes += difference(*gpu.memoryOwn, *metrics->memoryOwnUsed);
    }
    return bytes;
}

std::optional<ModelRoom> roomOfMemory(const SystemMetrics &sample)
{
    const MemorySnapshot &memory = sample.memory;
    if (!memory.available)
        return std::nullopt;
    const std::uint64_t ownFree = ownFreeMemory(sample);
    return ModelRoom{.free = *memory.available + ownFree,
                     .total = memory.total,
                     .used = difference(memory.total, *memory.available),
                     .ownFree = ownFree};
}

std::optional<ModelRoom> freeRoom(const SystemMetrics &sample)
{
    const MachineCoverage &machine = coverageOf(sample);
    if (machine.isWhole)
        return roomOfMac(sample.memory);
    return hasGraphicsCard(machine) ? roomOfCards(sample) : roomOfMemory(sample);
}

} // namespace

std::optional<ModelRoom> modelRoom(const SystemMetrics &sample)
{
    if (sample.memory.total == 0)
        return std::nullopt;
    auto room = freeRoom(sample);
    if (room) {
        room->bytes = difference(room->free, leftToContext);
        room->isUnderPressure = sample.memory.pressure != MemoryPressure::normal;
    }
    return room;
}

} // namespace corvane
