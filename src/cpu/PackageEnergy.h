#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// The energy counter of one CPU package, in microjoules.
struct PackageEnergyReading {
    std::string zone = {};
    std::uint64_t microjoules = 0;
    std::uint64_t range = 0; ///< Largest value before the counter wraps to 0; 0: unknown.
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

} // namespace corvane
