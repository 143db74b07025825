#include "chip/ChipSource_linux.h"

#include "chip/ChipSnapshot.h"
#include "cpu/CPUClusterFiles_linux.h"
#include "cpu/CPUCoreSampler.h"
#include "cpu/CPUFrequencyFiles_linux.h"
#include "cpu/PackageEnergyFiles_linux.h"
#include "cpu/ProcStatFile_linux.h"
#include "gpu/GPUWatch_linux.h"
#include "thermal/TemperatureFiles_linux.h"

#include <memory>
#include <utility>

namespace corvane {

namespace {

/// All that is read of one machine's chip. Each file is read once a tick.
class LinuxChip {
public:
    LinuxChip(const std::string &root, std::function<double()> now,
              const std::string &nvidiaLibrary)
        : m_now(now),
          m_clusters(readCPUClusters(root)),
          m_frequencies(m_clusters.begin(), m_clusters.end()),
          m_stat(root),
          m_packages(root, now),
          m_gpus(root, nvidiaLibrary, now),
          m_temperatures(root)
    {
        m_last = readCounters();
    }

    bool hasAnything() const
    {
        return !m_clusters.empty() || m_gpus.hasDevices() || m_packages.exist();
    }

    ChipReading sample()
    {
        ChipSnapshot now = readCounters();
        now.gpus = m_gpus.read();
        now.temperatures = m_temperatures.read(m_gpus);
        ChipReading reading = chipReading(m_last, now, m_clusters);
        if (!now.cpu.ticks.empty()) {
            reading.cpuCoreUtilizations = coreUtilizations(m_lastTicks, now.cpu.ticks);
            m_lastTicks = now.cpu.ticks;
        }
        m_last = std::move(now);
        return reading;
    }

private:
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
    std::vector<CoreTicks> m_lastTicks = {}; ///< Of the last reading that had any.
    ChipSnapshot m_last = {};
};

} // namespace

ChipSource openChipSource(std::function<double()> now)
{
    return openChipSourceBelow("/", std::move(now), "libnvidia-ml.so.1");
}

ChipSource openChipSourceBelow(const std::string &root, std::function<double()> now,
                               const std::string &nvidiaLibrary)
{
    const auto chip = std::make_shared<LinuxChip>(root, std::move(now), nvidiaLibrary);
    if (!chip->hasAnything())
        return {};
    return [chip] { return chip->sample(); };
}

} // namespace corvane
