// Prints the chip's values on this machine, a second at a time: for looking at real hardware.

#include "chip/ChipName.h"
#include "chip/ChipSource.h"
#include "cpu/CPUClusterFiles_linux.h"

#include <chrono>
#include <cstdio>
#include <thread>

using namespace corvane;

namespace {

void printClusters()
{
    for (const CPUCluster &cluster : readCPUClusters()) {
        std::printf("cluster of %zu CPUs:", cluster.cpus.size());
        for (const std::uint64_t kHz : cluster.kHz)
            std::printf(" %g", double(kHz) / 1000);
        std::printf("%s\n", cluster.kHz.empty() ? " no known frequency" : " MHz");
    }
}

void print(const char *name, const std::optional<double> &value, const char *unit)
{
    if (value)
        std::printf("  %s %g%s", name, *value, unit);
}

void printReading(const ChipReading &reading)
{
    std::printf("  CPU %.1f %%, %.0f MHz, %.2f W; GPU %.1f %%, %.2f W", //
                reading.cpuActiveFraction * 100, reading.cpuActiveMHz, reading.cpuWatts,
                reading.gpuActiveFraction * 100, reading.gpuWatts);
    print("cores", reading.cpuTempC, " C");
    print("package", reading.packageTempC, " C");
    print("GPUs", reading.gpuTempC, " C");
    std::printf("\n");
    for (const GPUMetrics &gpu : reading.gpus) {
        std::printf("  %s%s", qPrintable(gpu.device), gpu.integrated ? " (integrated)" : "");
        print("load", gpu.activeFraction, "");
        print("power", gpu.watts, " W");
        print("temperature", gpu.tempC, " C");
        std::printf("  state %s\n", qPrintable(gpu.state.value_or(QStringLiteral("unknown"))));
    }
}

} // namespace

int main()
{
    constexpr int seconds = 6;
    std::printf("chip: %s\n", readChipName().value_or("unknown").c_str());
    printClusters();
    const ChipSource chip = openChipSource();
    if (!chip)
        std::printf("nothing to read\n");
    for (int second = 1; chip && second <= seconds; ++second) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const auto began = std::chrono::steady_clock::now();
        const auto reading = chip();
        const std::chrono::duration<double, std::micro> took =
            std::chrono::steady_clock::now() - began;
        std::printf("second %d, sampled in %.0f us\n", second, took.count());
        if (reading)
            printReading(*reading);
        std::fflush(stdout);
    }
}
