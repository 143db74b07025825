#pragma once

#include "thermal/ChipTemperatures.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// A hardware monitoring device with the labels of its temperatures; a label may be empty.
struct SensorDevice {
    std::string driver = {};
    std::vector<std::string> labels = {};
};

/// Whether any temperature of a device with this driver is one of the chip. Those of other drivers
/// need not even be listed: some of them take milliseconds for a label.
bool isChipDriver(std::string_view driver);

/// The parts that the temperatures of this device are about, in the order of its labels; absent for
/// one that is about none.
std::vector<std::optional<ChipPart>> sensorParts(const SensorDevice &device);

/// The kinds of thermal zone to use where no monitoring device measures the CPU, best first.
enum class ThermalZoneKind { package, cpu, board };

/// The kind of a zone, by its `type`; absent for any other zone.
std::optional<ThermalZoneKind> thermalZoneKind(std::string_view type);

/// The part that the temperature of such zones is about.
ChipPart thermalZonePart(ThermalZoneKind kind);

/// Degrees Celsius of a zone's text; absent for a value that is not a measurement.
std::optional<double> thermalZoneDegrees(ThermalZoneKind kind, std::string_view text);

} // namespace corvane
