#pragma once

#include <optional>
#include <string_view>

namespace corvane {

/// What measures the power of a whole machine, best first.
enum class SystemPowerSource { systemController, powerSupply, powerMeter, battery };

/// As `MachineCoverage` names it.
std::string_view sourceName(SystemPowerSource source);

/// What a whole machine draws.
struct SystemPower {
    double watts = 0;
    SystemPowerSource source = SystemPowerSource::battery;
};

/// The contents of a battery's files in the kernel; empty where there is no such file.
struct BatteryText {
    std::string_view status = {};
    std::string_view power = {};   ///< Microwatts.
    std::string_view current = {}; ///< Microamperes.
    std::string_view voltage = {}; ///< Microvolts.
};

/// The watts that a battery delivers; absent unless it is discharging.
std::optional<double> batteryWatts(const BatteryText &text);

} // namespace corvane
