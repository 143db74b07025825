#include "thermal/TemperatureSensors.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

using Part = std::optional<ChipPart>;

constexpr Part core = ChipPart::cpu;
constexpr Part package = ChipPart::package;
constexpr Part graphics = ChipPart::gpu;
constexpr Part none = std::nullopt;

struct Rule {
    std::string_view driver; ///< Ends in "*" for every driver that begins so.
    std::string_view label;  ///< What the label begins with.
    Part part;
};

/// The one place that knows drivers and labels; the first rule that fits counts. GPUs on a bus are
/// not here: the GPU watch reads them, since they may sleep.
constexpr auto rules = std::to_array<Rule>({
    {"coretemp", "Core ", core},
    {"coretemp", "Package id", package},
    {"k10temp", "Tdie", core},
    {"k10temp", "Tccd", core},
    {"k10temp", "Tctl", core},
    {"zenpower", "Tdie", core},
    {"zenpower", "Tccd", core},
    {"zenpower", "Tctl", core},
    {"scpi_sensors", "GPU", graphics},
    {"scpi_sensors", "PMIC", none},
    {"scpi_sensors", "", core},
    {"gpu_thermal", "", graphics},
    {"gpu*", "", graphics},
    {"cpu*", "", core},
    {"bigcore*", "", core},
    {"littlecore*", "", core},
    {"soc_thermal", "", core},
});

bool fitsDriver(std::string_view pattern, std::string_view driver)
{
    if (!pattern.ends_with('*'))
        return pattern == driver;
    pattern.remove_suffix(1);
    return driver.starts_with(pattern) && driver.ends_with("_thermal");
}

Part partOf(const SensorDevice &device, std::string_view label)
{
    for (const Rule &rule : rules) {
        if (!fitsDriver(rule.driver, device.driver) || !label.starts_with(rule.label))
            continue;
        // Tctl is Tdie with an offset for the fan; it counts where there is no Tdie.
        const bool isOffset =
            rule.label == "Tctl" && std::ranges::find(device.labels, "Tdie") != device.labels.end();
        return isOffset ? none : rule.part;
    }
    return none;
}

} // namespace

bool isChipDriver(std::string_view driver)
{
    return std::ranges::any_of(rules,
                               [&](const Rule &rule) { return fitsDriver(rule.driver, driver); });
}

std::vector<std::optional<ChipPart>> sensorParts(const SensorDevice &device)
{
    std::vector<Part> parts;
    for (const std::string &label : device.labels)
        parts.push_back(partOf(device, label));
    return parts;
}

std::optional<ThermalZoneKind> thermalZoneKind(std::string_view type)
{
    type = trimmed(type);
    if (type == "x86_pkg_temp")
        return ThermalZoneKind::package;
    if (type.starts_with("cpu") && (type.ends_with("-thermal") || type.ends_with("_thermal")))
        return ThermalZoneKind::cpu;
    if (type == "acpitz")
        return ThermalZoneKind::board;
    return std::nullopt;
}

ChipPart thermalZonePart(ThermalZoneKind kind)
{
    return kind == ThermalZoneKind::cpu ? ChipPart::cpu : ChipPart::package;
}

std::optional<double> thermalZoneDegrees(ThermalZoneKind kind, std::string_view text)
{
    // Constants of firmware that has no sensor behind its zone.
    constexpr auto madeUp = std::to_array<std::string_view>({"16800", "27800", "29800"});
    text = trimmed(text);
    if (kind == ThermalZoneKind::board && std::ranges::find(madeUp, text) != madeUp.end())
        return std::nullopt;
    return parseMillidegrees(text);
}

} // namespace corvane
