#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// What a counter of energy is about.
enum class EnergyPart : std::uint8_t {
    package,
    cores,    ///< All CPU cores of a package.
    graphics, ///< Its integrated GPU.
};

/// The energy counter of one CPU package or of a part of it, in microjoules.
struct PackageEnergyReading {
    std::string zone = {};
    std::uint64_t microjoules = 0;
    std::uint64_t range = 0; ///< Largest value before the counter wraps to 0; 0: unknown.
    EnergyPart part = EnergyPart::package;
};

/// Joules between two values of a counter, unwrapped when it started again in between. Absent when
/// that is ambiguous: the counter also restarts while the machine sleeps, and may wrap more than
/// once in a long gap.
std::optional<double> packageJoules(const PackageEnergyReading &before,
                                    const PackageEnergyReading &now, double seconds);

/// Whether a zone of the power capping framework is a whole CPU package: the ones above, beside and
/// inside it count the same energy again.
bool isPackageZone(const std::string &zone, const std::string &name,
                   const std::string &controlType = "intel-rapl");

/// Whether `zone` is directly inside the zone of a package.
bool isInsideZone(const std::string &zone, const std::string &package);

} // namespace corvane
