#include "thermal/ThermalSampler.h"

#include <QLatin1StringView>

#include <utility>

namespace corvane {

using namespace Qt::StringLiterals;

ThermalSampler::ThermalSampler(TemperatureSource temperatures)
    : m_temperatures(std::move(temperatures))
{
}

ThermalSampler::Reading ThermalSampler::sample()
{
    m_thread.check();
    TemperatureMeans means;
    for (const auto &[name, celsius] : m_temperatures()) {
        if (const auto part = categorize(name))
            means.add({*part, celsius});
    }
    return means.means();
}

std::optional<ThermalSampler::Category> ThermalSampler::categorize(std::string_view name)
{
    // The patterns are ASCII, so bytes of other characters in the name can match none of them.
    const QLatin1StringView text(name.data(), static_cast<qsizetype>(name.size()));
    const auto contains = [text](QLatin1StringView part) {
        return text.contains(part, Qt::CaseInsensitive);
    };
    const auto starts = [text](QLatin1StringView part) {
        return text.startsWith(part, Qt::CaseInsensitive);
    };
    if (contains("battery"_L1) || contains("nand"_L1) || contains("tcal"_L1)
        || contains("gas gauge"_L1) || starts("pmu tdev"_L1))
        return std::nullopt; // Not on the die, or a calibration value.
    if (contains("ANE"_L1))
        return Category::ane;
    if (contains("GPU"_L1) || starts("PMU TG"_L1))
        return Category::gpu;
    if (contains("PACC"_L1) || contains("EACC"_L1) || starts("PMU TP"_L1) || starts("PMU TC"_L1))
        return Category::cpu;
    if (starts("PMU tdie"_L1) || contains("SOC"_L1) || starts("PMU TR"_L1) || starts("PMU TS"_L1))
        return Category::package;
    return std::nullopt;
}

} // namespace corvane
