#include "cpu/PackageEnergy.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace corvane;

namespace {

void expect(bool isSound)
{
    if (!isSound)
        std::abort();
}

void checkZone(const std::string &zone, const std::string &name)
{
    const bool isMain = isPackageZone(zone, name);
    const bool isOther = isPackageZone(zone, name, "intel-rapl-mmio");
    expect(!isMain || !isOther); // The same energy twice.
    expect((!isMain && !isOther) || (zone.starts_with("intel-rapl") && !name.empty()));
}

void checkJoules(const PackageEnergyReading &before, const PackageEnergyReading &now,
                 double seconds)
{
    constexpr double mostWatts = 5'000;
    const auto joules = packageJoules(before, now, seconds);
    expect(!joules || *joules >= 0);
    if (now.microjoules >= before.microjoules)
        expect(joules.has_value());
    else if (joules) // The counter started again.
        expect(before.microjoules <= now.range && *joules <= mostWatts * std::max(seconds, 0.05));
}

} // namespace

/// Five lines: a zone, its name, two values of its counter and the counter's range; then seconds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char *>(data), size);
    const auto line = [&text] { return takeLine(text).value_or(std::string_view()); };
    const auto number = [&line] { return parseUnsigned(trimmed(line())).value_or(0); };
    const std::string zone(line());
    checkZone(zone, std::string(line()));

    PackageEnergyReading before = {.zone = zone, .microjoules = number()};
    const PackageEnergyReading now = {.zone = zone, .microjoules = number(), .range = number()};
    before.range = now.range;
    checkJoules(before, now, parseDecimal(trimmed(line())).value_or(1));
    return 0;
}
