#include "chip/TemperatureSensors.h"

#include "gpu/GPUText.h"
#include "platform/KernelText.h"

#include <algorithm>
#include <array>
#include <map>

namespace corvane {

namespace {

constexpr std::string_view core = "PACC";
constexpr std::string_view package = "SOC";
constexpr std::string_view graphics = "GPU";
constexpr std::string_view none = "";

struct Rule {
    std::string_view driver; ///< Ends in "*" for every driver that begins so.
    std::string_view label;  ///< What the label begins with.
    std::string_view prefix;
};

/// The one place that knows drivers and labels; the first rule that fits counts. GPUs on a bus are
/// not here: they are read by the one who knows whether they sleep.
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

std::string_view prefixOf(const SensorDevice &device, std::string_view label)
{
    for (const Rule &rule : rules) {
        if (!fitsDriver(rule.driver, device.driver) || !label.starts_with(rule.label))
            continue;
        // Tctl is Tdie with an offset for the fan; it counts where Tdie is not shown.
        const bool outdone =
            rule.label == "Tctl" && std::ranges::find(device.labels, "Tdie") != device.labels.end();
        return outdone ? none : rule.prefix;
    }
    return none;
}

} // namespace

bool tellsOfChip(std::string_view driver)
{
    return std::ranges::any_of(rules,
                               [&](const Rule &rule) { return fitsDriver(rule.driver, driver); });
}

std::vector<std::vector<std::string>> sensorNames(const std::vector<SensorDevice> &devices)
{
    std::map<std::string_view, int> numbers;
    std::vector<std::vector<std::string>> names;
    for (const SensorDevice &device : devices) {
        auto &ofDevice = names.emplace_back();
        for (const std::string &label : device.labels) {
            const std::string_view prefix = prefixOf(device, label);
            ofDevice.push_back(prefix.empty()
                                   ? std::string()
                                   : std::string(prefix) + " " + std::to_string(++numbers[prefix]));
        }
    }
    return names;
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

std::string thermalZoneName(ThermalZoneKind kind)
{
    return std::string(kind == ThermalZoneKind::cpu ? core : package) + " 1";
}

std::optional<double> thermalZoneDegrees(ThermalZoneKind kind, std::string_view text)
{
    // What firmware without a sensor behind its zone tells, all day long.
    constexpr auto madeUp = std::to_array<std::string_view>({"16800", "27800", "29800"});
    text = trimmed(text);
    if (kind == ThermalZoneKind::board && std::ranges::find(madeUp, text) != madeUp.end())
        return std::nullopt;
    return parseMillidegrees(text);
}

} // namespace corvane
