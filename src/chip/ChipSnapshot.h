#pragma once

#include "cpu/CPUFrequencies.h"
#include "cpu/CoreTicks.h"
#include "cpu/PackageEnergy.h"
#include "gpu/GPUReading.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// What a kernel without reporting channels tells of the chip at one instant.
struct ChipSnapshot {
    double seconds = 0;                           ///< by the clock of the machine.
    std::vector<CoreTicks> cpus = {};             ///< By CPU number.
    std::vector<CPUClusterReading> clusters = {}; ///< In the order of the chip's clusters.
    std::vector<PackageEnergyReading> packages = {};
    std::vector<GPUReading> gpus = {};
};

/// One reporting channel worked out of two snapshots; `states` is empty for a simple one.
struct ChipChannel {
    struct State {
        std::string name = {};
        std::int64_t residency = 0;
    };

    std::string_view group = {};
    std::string_view subgroup = {};
    std::string name = {};
    std::optional<std::string_view> unit = {};
    std::int64_t value = 0;
    std::vector<State> states = {};
};

namespace ChipChannelGroup {
inline constexpr std::string_view energy = "Energy Model";
inline constexpr std::string_view gpu = "GPU Stats";
inline constexpr std::string_view cpu = "CPU Stats";
inline constexpr std::string_view cpuSubgroup = "CPU Complex Performance States";
} // namespace ChipChannelGroup

/// The channels of the time between two snapshots of a chip with these clusters. What either of
/// them lacks gives no channel.
std::vector<ChipChannel> chipChannels(const ChipSnapshot &from, const ChipSnapshot &to,
                                      const std::vector<CPUClusterStates> &clusters);

} // namespace corvane
