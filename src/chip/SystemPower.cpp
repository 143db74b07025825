#include "chip/SystemPower.h"

#include "platform/KernelText.h"
#include "platform/Plausible.h"

#include <cmath>

namespace corvane {

namespace {

/// Some firmware counts what flows out of the battery as negative.
std::optional<double> magnitude(std::string_view text)
{
    const auto number = parseSigned(trimmed(text));
    return number ? std::optional(std::abs(double(*number))) : std::nullopt;
}

} // namespace

std::string_view sourceName(SystemPowerSource source)
{
    switch (source) {
    case SystemPowerSource::systemController:
        return "system controller";
    case SystemPowerSource::powerSupply:
        return "power supply";
    case SystemPowerSource::powerMeter:
        return "ACPI power meter";
    case SystemPowerSource::battery:
        break;
    }
    return "battery";
}

std::optional<double> batteryWatts(const BatteryText &text)
{
    if (trimmed(text.status) != "Discharging")
        return std::nullopt;
    std::optional<double> watts;
    const auto current = magnitude(text.current);
    const auto voltage = magnitude(text.voltage);
    if (const auto microwatts = magnitude(text.power))
        watts = *microwatts * 1e-6;
    else if (current && voltage)
        watts = *current * *voltage * 1e-12;
    return watts && *watts <= maxWatts ? watts : std::nullopt;
}

} // namespace corvane
