#include "thermal/ThermalSampler.h"

#include <cstdint>
#include <cstdlib>

/// Any bytes as the name of a temperature sensor.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string name(reinterpret_cast<const char *>(data), size);
    corvane::ThermalSampler sampler([&name] { return std::map<std::string, double>{{name, 40}}; });
    const auto category = corvane::ThermalSampler::categorize(name);
    const auto reading = sampler.sample();
    const bool isRead = reading.cpu || reading.gpu || reading.ane || reading.package;
    if (isRead != category.has_value())
        std::abort();
    return 0;
}
