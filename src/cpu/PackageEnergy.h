#pragma once

#include "platform/BootClock.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// The energy counter of one CPU package, in microjoules.
struct PackageEnergyReading {
    std::string zone = {};
    std::uint64_t microjoules = 0;
    std::uint64_t range = 0; ///< The counter starts again at 0 behind it; 0: not known.
};

/// Joules between two values of a counter, unwrapped when it started again in between. Nothing when
/// it cannot be told: the counter also restarts while the machine sleeps, and may wrap more than
/// once in a long gap.
std::optional<double> packageJoules(const PackageEnergyReading &before,
                                    const PackageEnergyReading &now, double seconds);

/// Whether a zone of the power capping framework is a whole CPU package: the ones above, beside and
/// inside it count the same energy again.
bool isPackageZone(const std::string &zone, const std::string &name,
                   const std::string &controlType = "intel-rapl");

/// Reads the energy of every CPU package. The kernel shows it to the administrator alone unless
/// told otherwise, which may happen while the program runs: what is refused is tried again once a
/// minute. Owned by one reader, used on one thread.
class PackageEnergy {
public:
    explicit PackageEnergy(const std::string &root = "/",
                           std::function<double()> clock = secondsSinceBoot);
    ~PackageEnergy();

    /// The packages that can be read now; empty when there is none.
    std::vector<PackageEnergyReading> read();

    /// Whether the kernel counts the energy of any package, readable or not.
    bool exists() const;

private:
    struct Zones;
    std::unique_ptr<Zones> m_zones;
};

} // namespace corvane
