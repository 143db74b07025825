#include "gallery/ScriptedDay.h"

#include <algorithm>
#include <cmath>

namespace corvane::test {

namespace {

constexpr double hour = 3'600;

/// 0…1, at that many seconds before the newest sample.
double load(double before)
{
    const double burst = std::fmod(before, before < 10 * hour ? 2'900.0 : 610.0);
    const double wave = 0.06 * std::sin(before / 7) + 0.05 * std::sin(before * 1.7);
    const double level = burst < (before < 10 * hour ? 1'700 : 140) ? 0.72 : 0.1;
    const double flicker = std::fmod(before * 0.37, 1.0) > 0.985 ? 0.2 : 0;
    return std::clamp(level + wave + flicker, 0.02, 1.0);
}

bool isAwake(double before, DayShape shape)
{
    if (shape == DayShape::brief)
        return before < 15;
    const bool isNight = before > 11 * hour && before < 18.5 * hour;
    const bool isNoon = before > 5 * hour && before < 5.4 * hour;
    const bool isBreak = before > 1'500 && before < 1'900;
    return !isNight && !isNoon && !isBreak && !(before > 250 && before < 290);
}

SystemMetrics sampleOf(const SystemMetrics &newest, double before)
{
    SystemMetrics sample = newest;
    sample.timestamp = newest.timestamp - before;
    const double share = load(before);
    const double memory = 0.35 + 0.3 * (1 - before / (25 * hour)) + 0.1 * share;
    sample.memory.used = static_cast<std::uint64_t>(double(newest.memory.total) * memory);
    if (!sample.chip)
        return sample;
    ChipReading &chip = *sample.chip;
    const double power = 1.3 * share;
    chip.cpuActiveFraction = 0.25 + 0.5 * share * share;
    chip.gpuActiveFraction = share;
    chip.cpuWatts *= 0.2 + 0.8 * share;
    chip.gpuWatts *= power;
    chip.aneWatts *= share;
    for (GPUMetrics &gpu : chip.gpus) {
        if (gpu.activeFraction)
            gpu.activeFraction = share;
        if (gpu.watts)
            *gpu.watts *= power;
        if (gpu.memoryUsed)
            gpu.memoryUsed =
                static_cast<std::uint64_t>(double(*gpu.memoryUsed) * (0.5 + 0.5 * share));
    }
    return sample;
}

} // namespace

Timeline scriptedDay(const SystemMetrics &newest, DayShape shape)
{
    constexpr double step = 2;
    Timeline timeline;
    for (double before = 25 * hour; before >= 0; before -= step) {
        if (isAwake(before, shape))
            timeline.add(sampleOf(newest, before), newest.timestamp - before);
    }
    return timeline;
}

} // namespace corvane::test
