#include "chip/ChipSource_linux.h"

#include "chip/ChipSnapshot.h"
#include "chip/CoverageWatch.h"
#include "chip/GPUWatch_linux.h"
#include "chip/SystemPowerWatch_linux.h"
#include "cpu/CPUClusterFiles_linux.h"
#include "cpu/CPUCoreSampler.h"
#include "cpu/CPUFrequencyFiles_linux.h"
#include "cpu/PackageEnergyFiles_linux.h"
#include "cpu/ProcStatFile_linux.h"
#include "thermal/TemperatureFiles_linux.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace corvane {

namespace {

/// All that is read of one machine's chip. Each file is read once a tick.
class LinuxChip {
public:
    LinuxChip(const std::string &root, std::function<double()> now,
              const std::string &nvidiaLibrary, ReaderPatience patience,
              std::shared_ptr<GPUHandOver> gpus)
        : m_now(now),
          m_clusters(readCPUClusters(root)),
          m_frequencies(m_clusters.begin(), m_clusters.end()),
          m_stat(root),
          m_packages(root, now),
          m_gpus(root, nvidiaLibrary, now, std::move(gpus), patience),
          m_temperatures(root),
          m_systemPower(root, now, patience)
    {
        m_last = readCounters();
    }

    ChipReading sample()
    {
        ChipSnapshot now = readCounters();
        now.gpus = m_gpus.read();
        now.temperatures = m_temperatures.read(m_isGPU);
        ChipReading reading = chipReading(m_last, now, m_clusters);
        if (!now.cpu.ticks.empty()) {
            reading.cpuCoreUtilizations = coreUtilizations(m_lastTicks, now.cpu.ticks);
            m_lastTicks = now.cpu.ticks;
        }
        setRest(reading, now.seconds);
        m_last = std::move(now);
        return reading;
    }

private:
    /// What is read by itself, and the coverage.
    void setRest(ChipReading &reading, double now)
    {
        MachineFacts facts = {.countsPackages = m_packages.exist(),
                              .hasFrequency = m_hasFrequency,
                              .frequencyIsNominal = m_frequencyIsNominal,
                              .gpus = m_gpus.coverage()};
        if (const auto &npu = m_gpus.npu()) {
            reading.npu = npu->metrics;
            reading.aneWatts = npu->metrics.watts.value_or(0);
            facts.npuLoad = npu->load;
            facts.npuWatts = npu->watts;
        }
        if (const auto power = m_systemPower.read(m_isGPU)) {
            reading.systemWatts = power->watts;
            facts.systemWattsSource = QLatin1StringView(sourceName(power->source));
        }
        m_coverage.apply(reading, facts, now);
    }

    /// What a reading needs the difference of.
    ChipSnapshot readCounters()
    {
        return {.seconds = m_now(), .cpu = readCPUs(), .packages = m_packages.read()};
    }

    CPUSnapshot readCPUs()
    {
        auto ticks = m_stat.read();
        if (!ticks)
            return {};
        CPUSnapshot snapshot;
        for (std::size_t place = 0; place < m_clusters.size(); ++place)
            snapshot.clusters.push_back(m_frequencies[place].read(
                busiestCPU(m_clusters[place].cpus, m_last.cpu.ticks, *ticks)));
        snapshot.ticks = std::move(*ticks);
        return snapshot;
    }

    std::function<double()> m_now;
    std::vector<CPUCluster> m_clusters;
    std::vector<CPUFrequencyFiles> m_frequencies; ///< In the order of the clusters.
    ProcStatFile m_stat;
    PackageEnergyFiles m_packages;
    GPUWatch m_gpus;
    TemperatureFiles m_temperatures;
    SystemPowerWatch m_systemPower;
    CoverageWatch m_coverage = {};
    std::function<bool(const std::string &)> m_isGPU = [this](const std::string &folder) {
        return m_gpus.isGPU(folder);
    };
    bool m_hasFrequency = std::ranges::any_of(
        m_clusters, [](const CPUCluster &cluster) { return !cluster.kHz.empty(); });
    bool m_frequencyIsNominal =
        m_hasFrequency && std::ranges::all_of(m_clusters, [](const CPUCluster &cluster) {
            return cluster.policies.empty() && cluster.kHz.size() <= 1;
        });
    std::vector<CoreTicks> m_lastTicks = {}; ///< Of the last reading that had any.
    ChipSnapshot m_last = {};
};

} // namespace

ChipSource openChipSource(std::function<double()> now, const std::shared_ptr<GPUHandOver> &gpus)
{
    constexpr std::chrono::milliseconds patienceAtStart(100);
    return openChipSourceBelow("/", std::move(now), "libnvidia-ml.so.1", {.first = patienceAtStart},
                               gpus);
}

ChipSource openChipSourceBelow(const std::string &root, std::function<double()> now,
                               const std::string &nvidiaLibrary, ReaderPatience patience,
                               const std::shared_ptr<GPUHandOver> &gpus)
{
    const auto chip = std::make_shared<LinuxChip>(root, std::move(now), nvidiaLibrary, patience,
                                                  gpus ? gpus : std::make_shared<GPUHandOver>());
    return [chip] { return chip->sample(); };
}

} // namespace corvane
