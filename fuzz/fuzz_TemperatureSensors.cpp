#include "thermal/TemperatureSensors.h"

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
        const auto kind = thermalZoneKind(*line);
        if (kind == ThermalZoneKind::cpu && thermalZonePart(*kind) != ChipPart::cpu)
            std::abort();
        const auto degrees = thermalZoneDegrees(ThermalZoneKind::board, *line);
        if (degrees && !(*degrees > 0 && *degrees < 150))
            std::abort();
    }
    for (const SensorDevice &device : devices) {
        const auto parts = sensorParts(device);
        if (parts.size() != device.labels.size())
            std::abort();
        for (const auto &part : parts) {
            if (part && !isChipDriver(device.driver))
                std::abort();
        }
    }
    return 0;
}
