#pragma once

#include "cpu/CPULoad.h"
#include "cpu/PackageEnergy.h"
#include "gpu/GPUReading.h"
#include "records/ChipReading.h"
#include "thermal/ChipTemperatures.h"

#include <vector>

namespace corvane {

/// What a Linux kernel published about the chip at one instant. A list is empty when its source
/// could not be read.
struct ChipSnapshot {
    CPUSnapshot cpu = {};
    double seconds = 0; ///< When the packages were read, by the clock of the machine.
    std::vector<PackageEnergyReading> packages = {};
    std::vector<GPUReading> gpus = {};
    std::vector<PartTemperature> temperatures = {}; ///< Those of GPUs are in `gpus`.
};

/// The reading of the time between two snapshots of a chip with these clusters, without the
/// utilisations of its cores. A value that either of them lacks is 0 or absent; load and watts of
/// the CPU are then denied.
ChipReading chipReading(const ChipSnapshot &from, const ChipSnapshot &to,
                        const std::vector<CPUCluster> &clusters);

} // namespace corvane
