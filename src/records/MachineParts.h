#pragma once

#include "records/MachineCoverage.h"

#include <vector>

namespace corvane {

/// Which devices of a machine get a place in a view. It follows from the devices that are there and
/// not from what they tell at the moment, so that nothing moves when a card falls asleep. A whole
/// chip of Apple has places of its own, and these functions do not apply to it.

/// Whether this GPU is a graphics card with memory of its own.
constexpr bool isGraphicsCard(const GPUCoverage &gpu)
{
    return !gpu.integrated && !gpu.usesSystemMemory;
}

/// Whether the machine has graphics cards: then these count as its GPUs, else its integrated ones.
bool hasGraphicsCard(const MachineCoverage &machine);

/// Whether the GPU has memory figures, now or when it is awake.
bool hasMemory(const GPUCoverage &gpu);

/// The GPUs that count as the machine's.
std::vector<GPUCoverage> countedGPUs(const MachineCoverage &machine);

/// Those of them that have memory figures, now or when they are awake.
std::vector<GPUCoverage> gpusWithMemory(const MachineCoverage &machine);

/// Whether the memory of the counted GPUs is that of graphics cards; else it is that of integrated
/// GPUs, or there is none.
bool hasVRAM(const MachineCoverage &machine);

/// Whether any watts but those of the whole machine can be read, now or when a card is awake.
bool hasWatts(const MachineCoverage &machine);

bool hasNPU(const MachineCoverage &machine);

/// Whether neither a GPU nor watts nor temperatures can be read.
bool tellsCPUAndMemoryAlone(const MachineCoverage &machine);

} // namespace corvane
