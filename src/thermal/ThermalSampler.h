#pragma once

#include "thermal/ChipTemperatures.h"
#include "threads/OneThread.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// Averages the die temperatures of a Mac by the part of the chip that a sensor sits on, by the
/// sensor's name. Owned by the power sampler; used on one thread.
class ThermalSampler {
public:
    using Category = ChipPart;
    using Reading = ChipTemperatures;

    /// Degrees Celsius by sensor name.
    using TemperatureSource = std::function<std::map<std::string, double>()>;

    explicit ThermalSampler(TemperatureSource temperatures);

    Reading sample();

    /// The part that a sensor belongs to; absent when it is none of the four. Case does not matter.
    static std::optional<Category> categorize(std::string_view name);

private:
    TemperatureSource m_temperatures;
    OneThread m_thread = {};
};

} // namespace corvane
