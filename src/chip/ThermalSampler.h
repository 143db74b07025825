#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// Averages the die temperatures by the part of the chip that a sensor sits on, which its name
/// tells. Owned by the power sampler, used on its thread.
class ThermalSampler {
public:
    enum class Category { cpu, gpu, ane, package };

    /// Means in degrees Celsius, in the order of the categories; absent when no sensor of that part
    /// gave a value.
    struct Reading {
        std::optional<double> cpu = {};
        std::optional<double> gpu = {};
        std::optional<double> ane = {};
        std::optional<double> package = {};
    };

    /// Degrees Celsius by sensor name.
    using TemperatureSource = std::function<std::map<std::string, double>()>;

    explicit ThermalSampler(TemperatureSource temperatures);

    Reading sample();

    /// The part that a sensor belongs to; nothing when it is none of the four. Case does not
    /// matter.
    static std::optional<Category> categorize(std::string_view name);

private:
    TemperatureSource m_temperatures;
};

} // namespace corvane
