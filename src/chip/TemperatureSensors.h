#pragma once

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

/// Whether any temperature of a device with this driver may be of interest. Those of others need
/// not even be listed: some of them take milliseconds for a label.
bool tellsOfChip(std::string_view driver);

/// The names under which the temperatures of these devices are known, each in the place of its
/// label: a prefix that tells the category and a running number, such as "PACC 3" for a CPU core,
/// "SOC 1" for a package and "GPU 2". Empty for one that belongs to none.
std::vector<std::vector<std::string>> sensorNames(const std::vector<SensorDevice> &devices);

/// The kinds of thermal zone that stand in where no monitoring device tells of the CPU, best first.
enum class ThermalZoneKind { package, cpu, board };

/// The kind of a zone, by its `type`; nothing for any other zone.
std::optional<ThermalZoneKind> thermalZoneKind(std::string_view type);

/// The name under which the temperature of such zones is known.
std::string thermalZoneName(ThermalZoneKind kind);

/// Degrees Celsius of a zone's text; nothing for what is no measurement.
std::optional<double> thermalZoneDegrees(ThermalZoneKind kind, std::string_view text);

} // namespace corvane
