#include "chip/ChipSource_linux.h"

#include "chip/ChipSnapshot.h"
#include "chip/CoverageWatch.h"
#include "chip/GPUWatch_linux.h"
#include "chip/SensorWatch_linux.h"
#include "cpu/CPUCoreSampler.h"
#include "cpu/ProcStatFile_linux.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace corvane {

namespace {

/// All that is read of one machine's chip. Each file is read once a tick. This thread reads only
/// what the kernel answers from its own memory.
class LinuxChip {
public:
    LinuxChip(const std::string &root, std::function<double()> now,
              const std::string &nvidiaLibrary, ReaderPatience patience,
              std::shared_ptr<GPUHandOver> gpus)
        : m_now(now),
          m_patience(patience),
          m_stat(root, now),
          m_gpus(root, nvidiaLibrary, now, std::move(gpus), patience, m_drivers),
          m_sensorWatch(root, m_drivers)
    {
        readTicks();
        readSensors(m_patience.first);
    }

    ChipReading sample()
    {
        readTicks();
        askDrivers();
        ChipReading reading = chipReading(m_from, m_to, m_clusters);
        if (!m_to.cpu.ticks.empty()) {
            reading.cpuCoreUtilizations = coreUtilizations(m_lastTicks, m_to.cpu.ticks);
            m_lastTicks = m_to.cpu.ticks;
        }
        setRest(reading);
        return reading;
    }

private:
    void readTicks()
    {
        m_from.cpu.ticks =
            std::exchange(m_to.cpu.ticks, m_stat.read().value_or(std::vector<CoreTicks>()));
    }

    /// In one batch, so that all their files together cost one wake-up.
    void askDrivers()
    {
        const ReaderThread::Batch batch(*m_drivers);
        readSensors(std::exchange(m_isFirst, false) ? m_patience.first : m_patience.later);
        m_from.gpus = std::exchange(m_to.gpus, m_gpus.read());
    }

    /// A late answer leaves what is known of the sensors as it was, until it is too old.
    void readSensors(std::chrono::milliseconds patience)
    {
        const auto newest = m_sensorWatch.read(m_now(), busiestCPUs(), patience);
        if (newest == m_sensors)
            return;
        m_sensors = newest;
        // The lists are assigned to rather than replaced, so that a steady tick allocates none.
        m_from.seconds = m_to.seconds;
        std::swap(m_from.cpu.clusters, m_to.cpu.clusters);
        std::swap(m_from.packages, m_to.packages);
        if (!newest) {
            m_to.cpu.clusters.clear();
            m_to.packages.clear();
            m_to.temperatures.clear();
            return;
        }
        if (m_clusters.empty())
            setClusters(*newest->clusters);
        m_to.seconds = newest->seconds;
        m_to.cpu.clusters = newest->cpus;
        m_to.packages = newest->packages;
        m_to.temperatures = newest->temperatures;
    }

    BusiestCPUs busiestCPUs() const
    {
        BusiestCPUs busiest;
        for (const CPUCluster &cluster : m_clusters)
            busiest.push_back(busiestCPU(cluster.cpus, m_from.cpu.ticks, m_to.cpu.ticks));
        return busiest;
    }

    void setClusters(const std::vector<CPUCluster> &clusters)
    {
        m_clusters = clusters;
        m_hasFrequency = std::ranges::any_of(
            clusters, [](const CPUCluster &cluster) { return !cluster.kHz.empty(); });
        m_frequencyIsNominal =
            m_hasFrequency && std::ranges::all_of(clusters, [](const CPUCluster &cluster) {
                return cluster.policies.empty() && cluster.kHz.size() <= 1;
            });
    }

    /// What is read by itself, and the coverage.
    void setRest(ChipReading &reading)
    {
        MachineFacts facts = {.countsPackages = m_sensors && m_sensors->countsPackages,
                              .hasFrequency = m_hasFrequency,
                              .frequencyIsNominal = m_frequencyIsNominal,
                              .gpus = m_gpus.coverage()};
        if (const auto &npu = m_gpus.npu()) {
            reading.npu = npu->metrics;
            reading.aneWatts = npu->metrics.watts.value_or(0);
            facts.npuLoad = npu->load;
            facts.npuWatts = npu->watts;
        }
        if (m_sensors && m_sensors->systemPower) {
            reading.systemWatts = m_sensors->systemPower->watts;
            facts.systemWattsSource = QLatin1StringView(sourceName(m_sensors->systemPower->source));
        }
        m_coverage.apply(reading, std::move(facts), m_now());
    }

    std::function<double()> m_now;
    ReaderPatience m_patience;
    ProcStatFile m_stat;
    std::shared_ptr<ReaderThread> m_drivers = std::make_shared<ReaderThread>();
    GPUWatch m_gpus;
    SensorWatch m_sensorWatch;
    std::shared_ptr<const SensorReading> m_sensors = {}; ///< The newest; null without any.
    std::vector<CPUCluster> m_clusters = {};             ///< Empty until the sensors answered once.
    bool m_hasFrequency = false;
    bool m_frequencyIsNominal = false;
    CoverageWatch m_coverage = {};
    bool m_isFirst = true;
    std::vector<CoreTicks> m_lastTicks = {}; ///< Of the last reading that had any.
    /// What a reading needs the difference of. Ticks and GPUs are those of the last two ticks; what
    /// the sensors tell is of their last two answers.
    ChipSnapshot m_from = {};
    ChipSnapshot m_to = {};
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
