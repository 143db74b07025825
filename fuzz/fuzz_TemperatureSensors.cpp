#include "chip/TemperatureSensors.h"

#include "platform/KernelText.h"

#include <cstdint>
#include <cstdlib>

using namespace corvane;

/// Lines by turns as drivers' names and labels, and each as the type and value of a zone.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char *>(data), size);
    std::vector<SensorDevice> devices;
    while (const auto line = takeLine(text)) {
        if (devices.empty() || devices.back().labels.size() == 3)
            devices.push_back({.driver = std::string(*line)});
        else
            devices.back().labels.emplace_back(*line);
        if (const auto kind = thermalZoneKind(*line); kind && thermalZoneName(*kind).empty())
            std::abort();
        const auto degrees = thermalZoneDegrees(ThermalZoneKind::board, *line);
        if (degrees && !(*degrees > 0 && *degrees < 150))
            std::abort();
    }
    const auto names = sensorNames(devices);
    if (names.size() != devices.size())
        std::abort();
    for (std::size_t device = 0; device < names.size(); ++device) {
        if (names[device].size() != devices[device].labels.size())
            std::abort();
    }
    return 0;
}
