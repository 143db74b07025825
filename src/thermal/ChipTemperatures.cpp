#include "thermal/ChipTemperatures.h"

namespace corvane {

void TemperatureMeans::add(PartTemperature sensor)
{
    Sum &sum = m_sums[static_cast<std::size_t>(sensor.part)];
    sum.celsius += sensor.celsius;
    ++sum.count;
}

ChipTemperatures TemperatureMeans::means() const
{
    return {.cpu = mean(ChipPart::cpu),
            .gpu = mean(ChipPart::gpu),
            .ane = mean(ChipPart::ane),
            .package = mean(ChipPart::package)};
}

std::optional<double> TemperatureMeans::mean(ChipPart part) const
{
    const Sum &sum = m_sums[static_cast<std::size_t>(part)];
    return sum.count > 0 ? std::optional(sum.celsius / sum.count) : std::nullopt;
}

void setTemperatures(ChipReading &reading, const ChipTemperatures &temperatures)
{
    reading.cpuTempC = temperatures.cpu;
    reading.gpuTempC = temperatures.gpu;
    reading.aneTempC = temperatures.ane;
    reading.packageTempC = temperatures.package;
}

} // namespace corvane
