#pragma once

#include <optional>
#include <string_view>

namespace corvane {

/// What the firmware of an APU of AMD measures of the parts of its package, from amdgpu's
/// `gpu_metrics`. What the format lacks or marks as unknown is absent.
struct APUMetrics {
    std::optional<double> packageWatts = {};
    std::optional<double> coreWatts = {};     ///< All CPU cores together.
    std::optional<double> graphicsWatts = {}; ///< The GPU.
    std::optional<double> npuFraction = {};   ///< 0…1, mean over the columns that it has.
    std::optional<double> npuWatts = {};
    std::optional<double> npuMHz = {};

    friend bool operator==(const APUMetrics &, const APUMetrics &) = default;
};

/// Parses the formats 2.1 to 2.4 and 3.0 of the kernel's `kgd_pp_interface.h`, each of exactly its
/// size; absent for any other. The watts of some firmware of format 2.2 are not in the unit that
/// the format says: compare `packageWatts` with the package's sensor before using the others.
std::optional<APUMetrics> parseAPUMetrics(std::string_view bytes);

} // namespace corvane
