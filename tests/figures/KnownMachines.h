#pragma once

#include "records/SystemMetrics.h"

#include <memory>

namespace corvane::test {

/// A sample of a machine with a graphics card that works, one that sleeps, and CPU watts that only
/// an administrator may read.
inline SystemMetrics cardMachine()
{
    using namespace Qt::StringLiterals;
    MachineCoverage coverage;
    coverage.isWhole = false;
    coverage.cpuWatts = Coverage::locked;
    coverage.cpuFrequency = Coverage::known;
    coverage.gpus = {{.device = u"0000:01:00.0"_s,
                      .name = u"Card \"A\""_s,
                      .load = Coverage::known,
                      .watts = Coverage::known,
                      .memory = Coverage::known,
                      .memoryTotal = 24'000'000'000},
                     {.device = u"0000:02:00.0"_s,
                      .name = u"Card B"_s,
                      .load = Coverage::asleep,
                      .watts = Coverage::asleep,
                      .memory = Coverage::asleep,
                      .memoryTotal = 8'000'000'000}};
    ChipReading chip;
    chip.cpuActiveFraction = 0.25;
    chip.cpuActiveMHz = 4000;
    chip.cpuCoreUtilizations = {0.5, 0};
    chip.cpuTempC = 61;
    chip.gpuWatts = 318;
    chip.gpus = {{.device = u"0000:01:00.0"_s,
                  .activeFraction = 0.97,
                  .state = u"P2"_s,
                  .megahertz = 2610,
                  .watts = 318,
                  .tempC = 66,
                  .memoryUsed = 21'000'000'000,
                  .limit = GPULimit::power}};
    chip.coverage = std::make_shared<const MachineCoverage>(coverage);
    SystemMetrics sample;
    sample.timestamp = 0;
    sample.memory = {.total = 64'000'000'000,
                     .used = 16'000'000'000,
                     .appMemory = 16'000'000'000,
                     .swapUsed = 1'000'000,
                     .pressure = MemoryPressure::warning};
    sample.chip = chip;
    return sample;
}

/// A sample of a whole chip, whose Neural Engine rests.
inline SystemMetrics wholeChip()
{
    using namespace Qt::StringLiterals;
    ChipReading chip;
    chip.cpuWatts = 10;
    chip.gpuWatts = 30;
    chip.cpuActiveFraction = 0.5;
    chip.gpuActiveFraction = 0.75;
    chip.gpuDominantState = u"P12"_s;
    chip.gpuTempC = 70;
    SystemMetrics sample;
    sample.timestamp = 0;
    sample.memory = {.total = 64'000'000'000, .used = 16'000'000'000};
    sample.chip = chip;
    return sample;
}

} // namespace corvane::test
