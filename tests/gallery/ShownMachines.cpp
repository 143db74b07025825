#include "gallery/ShownMachines.h"

#include "gallery/ScriptedSamples.h"

namespace corvane::test {

namespace {

using namespace Qt::StringLiterals;

MemorySnapshot memoryOf(double used, double total, double swapUsed, double swapTotal)
{
    MemorySnapshot memory;
    memory.used = gibibytes(used);
    memory.total = gibibytes(total);
    memory.swapUsed = gibibytes(swapUsed);
    memory.swapTotal = gibibytes(swapTotal);
    return memory;
}

GPUCoverage card(const QString &device, const QString &name, double gigabytes)
{
    return {.device = device,
            .name = name,
            .load = Coverage::known,
            .watts = Coverage::known,
            .memory = Coverage::known,
            .memoryTotal = gibibytes(gigabytes)};
}

GPUCoverage integrated(const QString &name)
{
    return {.device = u"0000:00:02.0"_s,
            .name = name,
            .integrated = true,
            .usesSystemMemory = true,
            .load = Coverage::known};
}

/// CPU and temperature, as most machines have them.
MachineCoverage cpuOnly(Coverage cpuWatts)
{
    return {.isWhole = false,
            .cpuWatts = cpuWatts,
            .cpuTemperature = Coverage::known,
            .cpuFrequency = Coverage::known};
}

SystemMetrics sampleOf(const MemorySnapshot &memory, ChipReading chip, MachineCoverage coverage)
{
    chip.coverage = std::make_shared<const MachineCoverage>(std::move(coverage));
    return {.memory = memory, .chip = std::move(chip)};
}

} // namespace

ShownMachine oneCard()
{
    MachineCoverage coverage = cpuOnly(Coverage::locked);
    coverage.gpus = {card(u"0000:01:00.0"_s, u"NVIDIA GeForce RTX 4090"_s, 23.99)};
    ChipReading chip{.gpuWatts = 318.42,
                     .cpuActiveFraction = 0.23,
                     .gpuActiveFraction = 0.97,
                     .cpuActiveMHz = 4320,
                     .cpuTempC = 61,
                     .denied = {.cpuWatts = true}};
    chip.gpus = {{.device = u"0000:01:00.0"_s,
                  .activeFraction = 0.97,
                  .state = u"P2"_s,
                  .megahertz = 2610,
                  .watts = 318.42,
                  .tempC = 67,
                  .memoryUsed = gibibytes(21.592)}};
    return {u"One graphics card"_s, u"AMD Ryzen 9 5950X 16-Core Processor"_s,
            sampleOf(memoryOf(11.94, 62.72, 0, 8), std::move(chip), std::move(coverage))};
}

ShownMachine apuWithNPU()
{
    MachineCoverage coverage = cpuOnly(Coverage::known);
    coverage.packageWatts = Coverage::known;
    coverage.npuLoad = Coverage::known;
    coverage.npuWatts = Coverage::known;
    coverage.gpus = {integrated(u"AMD Radeon 890M"_s)};
    coverage.gpus[0].watts = Coverage::known;
    coverage.gpus[0].memory = Coverage::known;
    coverage.gpus[0].memoryTotal = gibibytes(15.81);
    coverage.gpus[0].memoryOwn = gibibytes(0.5);
    ChipReading chip{.cpuWatts = 9.84,
                     .gpuWatts = 21.63,
                     .cpuActiveFraction = 0.31,
                     .gpuActiveFraction = 0.885,
                     .cpuActiveMHz = 3620,
                     .cpuTempC = 74,
                     .packageWatts = 41.2};
    chip.gpus = {{.device = coverage.gpus[0].device,
                  .integrated = true,
                  .activeFraction = 0.882,
                  .megahertz = 2900,
                  .watts = 21.63,
                  .tempC = 71,
                  .memoryUsed = gibibytes(10.96)}};
    chip.npu = {.activeFraction = 0.17, .watts = 1.35, .megahertz = 1800};
    return {
        u"APU with NPU"_s, u"AMD Ryzen AI 9 HX 370 w/ Radeon 890M"_s,
        sampleOf(memoryOf(19.27, 30.62, 214.5 / 1024, 8), std::move(chip), std::move(coverage))};
}

ShownMachine fourCards()
{
    struct Card {
        double load;
        double watts;
        double gigabytes;
    };
    const Card cards[] = {
        {0.94, 268, 44.19}, {0.93, 261, 43.77}, {0.61, 187.1, 22.9}, {0, 23, 0.43}};
    MachineCoverage coverage = cpuOnly(Coverage::known);
    ChipReading chip{.cpuWatts = 96.4,
                     .gpuWatts = 739.1,
                     .cpuActiveFraction = 0.18,
                     .gpuActiveFraction = 0.62,
                     .cpuActiveMHz = 3900,
                     .cpuTempC = 66};
    for (const Card &each : cards) {
        const QString device = u"0000:%1:00.0"_s.arg(21 + 10 * coverage.gpus.size());
        coverage.gpus.push_back(card(device, u"NVIDIA RTX A6000"_s, 191.95 / 4));
        chip.gpus.push_back({.device = device,
                             .activeFraction = each.load,
                             .watts = each.watts,
                             .tempC = 78,
                             .memoryUsed = gibibytes(each.gigabytes)});
    }
    return {u"Four graphics cards"_s, u"AMD Ryzen Threadripper PRO 5975WX 32-Cores"_s,
            sampleOf(memoryOf(61.38, 251.57, 0, 0), std::move(chip), std::move(coverage))};
}

ShownMachine cardAsleep()
{
    MachineCoverage coverage = cpuOnly(Coverage::locked);
    GPUCoverage asleep = card(u"0000:01:00.0"_s, u"NVIDIA GeForce RTX 3060 Laptop GPU"_s, 6);
    asleep.load = asleep.watts = asleep.memory = Coverage::asleep;
    coverage.gpus = {integrated(u"Intel GPU 0"_s), asleep};
    ChipReading chip{.cpuActiveFraction = 0.09,
                     .gpuActiveFraction = 0.06,
                     .cpuActiveMHz = 1940,
                     .cpuTempC = 51,
                     .denied = {.cpuWatts = true}};
    chip.gpus = {{.device = coverage.gpus[0].device,
                  .integrated = true,
                  .activeFraction = 0.0602,
                  .megahertz = 450}};
    return {u"Card asleep"_s, u"12th Gen Intel(R) Core(TM) i7-12700H"_s,
            sampleOf(memoryOf(7.93, 31.06, 0, 8), std::move(chip), std::move(coverage))};
}

ShownMachine integratedAlone()
{
    MachineCoverage coverage = cpuOnly(Coverage::locked);
    coverage.gpus = {integrated(u"Intel GPU 0"_s)};
    ChipReading chip{.cpuActiveFraction = 0.641,
                     .gpuActiveFraction = 0.141,
                     .cpuActiveMHz = 2870,
                     .cpuTempC = 82,
                     .denied = {.cpuWatts = true}};
    chip.gpus = {{.device = coverage.gpus[0].device,
                  .integrated = true,
                  .activeFraction = 0.141,
                  .megahertz = 600}};
    return {u"Integrated GPU alone"_s, u"13th Gen Intel(R) Core(TM) i7-1360P"_s,
            sampleOf(memoryOf(12.88, 15.31, 2.87, 7.65), std::move(chip), std::move(coverage))};
}

ShownMachine virtualMachine()
{
    MachineCoverage coverage = {
        .isWhole = false, .cpuFrequency = Coverage::known, .cpuFrequencyIsNominal = true};
    return {u"Virtual machine"_s, u"Intel(R) Xeon(R) Processor @ 2.30GHz"_s,
            sampleOf(memoryOf(4.71, 23.54, 0, 0),
                     {.cpuActiveFraction = 0.576, .cpuActiveMHz = 2300}, std::move(coverage))};
}

SystemMetrics changed(
    SystemMetrics sample,
    const std::function<void(MachineCoverage &coverage, ChipReading &chip)> &change)
{
    auto coverage = std::make_shared<MachineCoverage>(coverageOf(sample));
    change(*coverage, *sample.chip);
    sample.chip->coverage = std::move(coverage);
    return sample;
}

} // namespace corvane::test
