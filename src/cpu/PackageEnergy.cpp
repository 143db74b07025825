#include "cpu/PackageEnergy.h"

#include "platform/Plausible.h"

#include <algorithm>

namespace corvane {

std::optional<double> packageJoules(const PackageEnergyReading &before,
                                    const PackageEnergyReading &now, double seconds)
{
    constexpr double joulesPerMicrojoule = 1e-6;
    if (now.microjoules >= before.microjoules)
        return double(now.microjoules - before.microjoules) * joulesPerMicrojoule;

    constexpr double longestGap = 3;      // Seconds; the counter is read once a second.
    constexpr double leastSeconds = 0.05; // Two readings may follow each other at once.
    if (seconds > longestGap || before.microjoules > now.range)
        return std::nullopt;
    const double joules =
        double(now.range - before.microjoules + now.microjoules) * joulesPerMicrojoule;
    // Beyond this the counter restarted without having reached its end.
    if (joules > maxWatts * std::max(seconds, leastSeconds))
        return std::nullopt;
    return joules;
}

bool isPackageZone(const std::string &zone, const std::string &name, const std::string &controlType)
{
    return zone.starts_with(controlType + ":") && std::ranges::count(zone, ':') == 1
        && name.starts_with("package-");
}

bool isInsideZone(const std::string &zone, const std::string &package)
{
    return zone.starts_with(package + ":")
        && std::ranges::count(zone, ':') == std::ranges::count(package, ':') + 1;
}

} // namespace corvane
