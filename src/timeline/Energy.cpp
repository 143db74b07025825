#include "timeline/Energy.h"

namespace corvane {

namespace {

void add(std::optional<double> &sum, const std::optional<double> &joules)
{
    if (joules)
        sum = sum.value_or(0) + *joules;
}

std::optional<double> joules(const std::optional<double> &watts, double seconds)
{
    return watts ? std::optional(*watts * seconds) : std::nullopt;
}

} // namespace

Energy &Energy::operator+=(const Energy &other)
{
    seconds += other.seconds;
    all += other.all;
    add(cpu, other.cpu);
    add(gpu, other.gpu);
    add(npu, other.npu);
    return *this;
}

Energy energyOf(const Measures &measures, double seconds)
{
    const std::optional<double> all = joules(measures[indexOf(Measure::totalWatts)], seconds);
    if (!all)
        return {};
    return {.seconds = seconds,
            .all = *all,
            .cpu = joules(measures[indexOf(Measure::cpuWatts)], seconds),
            .gpu = joules(measures[indexOf(Measure::gpuWatts)], seconds),
            .npu = joules(measures[indexOf(Measure::npuWatts)], seconds)};
}

double measuredSeconds(double previous, double now)
{
    const double step = now - previous;
    return step > 0 && step <= longestMeasuredStep ? step : 0;
}

} // namespace corvane
