#include "gallery/ScriptedSamples.h"

#include <QDateTime>

#include <algorithm>
#include <array>
#include <cmath>

namespace corvane::test {

namespace {

using namespace Qt::StringLiterals;

constexpr int sampleCount = 60;

/// 14:04:35 local time, so that the time labels are the same in every time zone.
double firstTimestamp()
{
    const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime first(QDate(2026, 6, 15), QTime(14, 4, 35), Qt::LocalTime);
    return static_cast<double>(reference.secsTo(first));
}

/// A pseudorandom number in -1…1.
double wobble(int index, int seed)
{
    return std::sin(index * 12.9898 + seed * 78.233) * std::cos(index * 4.1414 + seed);
}

/// Three bursts of load with pauses between them, 0…1.
double burst(double second)
{
    struct Ramp {
        double start;
        double end;
    };
    constexpr std::array<Ramp, 3> bursts{Ramp{2, 19}, Ramp{23, 41}, Ramp{45, 70}};
    double level = 0;
    for (const Ramp &ramp : bursts) {
        const double rise = std::clamp((second - ramp.start) / 2.5, 0.0, 1.0);
        const double fall = std::clamp((ramp.end - second) / 3.0, 0.0, 1.0);
        level = std::max(level, std::min(rise, fall));
    }
    return level;
}

double cpuLoad(int index)
{
    double load = 0.36 + 0.06 * std::sin(index / 4.0) + 0.03 * wobble(index, 1);
    for (const int spike : {4, 24, 46})
        load += 0.28 * std::exp(-std::pow(index - spike, 2) / 1.6);
    return index == sampleCount - 1 ? 0.48 : load;
}

MemorySnapshot memoryAt(int index)
{
    MemorySnapshot memory;
    memory.total = gibibytes(64);
    memory.used = static_cast<std::uint64_t>(
        static_cast<double>(memory.total)
        * (0.655 + 0.055 * std::sqrt(static_cast<double>(index) / sampleCount)
           + 0.001 * wobble(index, 9)));
    if (index == sampleCount - 1)
        memory.used = gibibytes(64 * 0.71);
    memory.appMemory = gibibytes(38.94);
    memory.wired = gibibytes(6.41);
    memory.compressed = gibibytes(3.12);
    memory.cached = gibibytes(9.85);
    memory.free = gibibytes(8.7);
    memory.swapUsed = gibibytes(1.37);
    memory.swapTotal = gibibytes(3);
    return memory;
}

ChipReading chipAt(int index)
{
    const double load = burst(index);
    ChipReading chip;
    chip.cpuActiveFraction = cpuLoad(index);
    chip.cpuWatts = 8 + 15 * (cpuLoad(index) - 0.25) + 2 * load;
    chip.gpuActiveFraction = 0.08 + 0.86 * load + 0.02 * wobble(index, 2);
    chip.gpuWatts = 1.2 + 32 * load + 1.2 * wobble(index, 3);
    chip.aneWatts = 0.3 + 1.4 * std::max(0.0, std::sin(index / 4.6 + 0.4)) + 0.1 * wobble(index, 4);
    chip.cpuActiveMHz = 3080 + 190 * wobble(index, 5);
    chip.gpuDominantState = u"P12"_s;
    chip.cpuTempC = 74;
    chip.gpuTempC = 71;
    chip.aneTempC = 68;
    chip.packageTempC = 68;
    chip.cpuCoreUtilizations = {0.71, 0.64, 0.58, 0.48, 0.87, 0.79, 0.43, 0.63,
                                0.53, 0.31, 0.17, 0.38, 0.09, 0.03, 0.02, 0.22};
    if (index == sampleCount - 1) {
        chip.cpuWatts = 16.69;
        chip.gpuWatts = 31.62;
        chip.aneWatts = 1.35;
        chip.gpuActiveFraction = 0.90;
        chip.cpuActiveMHz = 3270;
    }
    return chip;
}

} // namespace

std::uint64_t gibibytes(double gibibytes)
{
    return static_cast<std::uint64_t>(gibibytes * 1024 * 1024 * 1024);
}

std::vector<SystemMetrics> scriptedHistory()
{
    std::vector<SystemMetrics> history;
    for (int index = 0; index < sampleCount; ++index) {
        history.push_back({.timestamp = firstTimestamp() + index,
                           .memory = memoryAt(index),
                           .chip = chipAt(index)});
    }
    return history;
}

SystemMetrics scriptedCurrent()
{
    return scriptedHistory().back();
}

std::vector<SystemMetrics> historyWithoutChip()
{
    std::vector<SystemMetrics> history = scriptedHistory();
    for (SystemMetrics &sample : history)
        sample.chip.reset();
    return history;
}

std::vector<SystemMetrics> historyUnderPressure(MemoryPressure pressure)
{
    const bool critical = pressure == MemoryPressure::critical;
    std::vector<SystemMetrics> history = scriptedHistory();
    for (std::size_t i = 0; i < history.size(); ++i) {
        MemorySnapshot &memory = history[i].memory;
        const double way = static_cast<double>(i) / (sampleCount - 1);
        const double fraction = 0.65 + (critical ? 0.33 : 0.24) * way;
        memory.used = gibibytes(64 * fraction);
        memory.pressure = pressure;
        memory.appMemory = gibibytes(critical ? 61.48 : 52.37);
        memory.wired = gibibytes(critical ? 9.37 : 8.02);
        memory.compressed = gibibytes(critical ? 18.26 : 9.64);
        memory.cached = critical ? gibibytes(812.4 / 1024) : gibibytes(4.31);
        memory.swapUsed = gibibytes(critical ? 21.06 : 5.18);
        memory.swapTotal = gibibytes(critical ? 24 : 8);
    }
    return history;
}

std::vector<ProcessRow> scriptedProcesses()
{
    const auto megabytes = [](double count) { return gibibytes(count / 1024); };
    return {{48213, u"llama-server"_s, gibibytes(20.94)},
            {50977, u"python3.12"_s, gibibytes(6.18)},
            {901, u"com.apple.Virtualization.VirtualMachine"_s, gibibytes(4.02)},
            {1864, u"LM Studio Helper (Renderer)"_s, gibibytes(2.47)},
            {733, u"Xcode"_s, gibibytes(2.11)},
            {2210, u"com.apple.WebKit.WebContent"_s, gibibytes(1.63)},
            {2301, u"sourcekit-lsp"_s, gibibytes(1.28)},
            {655, u"Photos"_s, gibibytes(1.04)},
            {3100, u"whisper-transcribe"_s, megabytes(934.4)},
            {1501, u"Code Helper (Renderer)"_s, megabytes(812.7)},
            {688, u"Music"_s, megabytes(655.2)},
            {402, u"Finder"_s, megabytes(514)},
            {699, u"Mail"_s, megabytes(488.9)},
            {377, u"WindowServer"_s, megabytes(431.6)},
            {812, u"Messages"_s, megabytes(388.3)},
            {840, u"Notes"_s, megabytes(301.2)},
            {512, u"mds_stores"_s, megabytes(287.5)},
            {871, u"Terminal"_s, megabytes(244.8)},
            {1200, u"zsh"_s, megabytes(18.3)},
            {1, u"launchd"_s, megabytes(12.1)}};
}

std::vector<AIWorkload> scriptedWorkloads()
{
    return {{48213, 48213, u"llama-server"_s, AIFramework::llamaCpp,
             u"Qwen2.5-32B-Instruct-Q4_K_M.gguf"_s, gibibytes(20.94)},
            {50977, 50977, u"python3.12"_s, AIFramework::mlx,
             u"mlx-community/Llama-3.1-8B-Instruct-4bit"_s, gibibytes(6.18)},
            {1864, 1864, u"LM Studio Helper (Renderer)"_s, AIFramework::lmStudio, std::nullopt,
             gibibytes(2.47)}};
}

} // namespace corvane::test
