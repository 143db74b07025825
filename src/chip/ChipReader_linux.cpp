#include "chip/ChipReader.h"

#include "cpu/CPUFrequencyFiles.h"

namespace corvane {

struct ChipReader::Sources {
    Parts parts;
    std::shared_ptr<GPUWatch> gpus;
    std::function<double()> clock;
    CoreTicksReader ticks;
    PackageEnergy packages;
    std::vector<CPUClusterStates> clusters = {};
    std::vector<CPUFrequencyFiles> frequencies = {};
    std::vector<CoreTicks> lastTicks = {};

    std::optional<int> busiest(const CPUCluster &cluster, const std::vector<CoreTicks> &now) const;
    void readCPUs(ChipSnapshot &snapshot);
};

/// The CPU of a cluster that was active for longest since the last reading.
std::optional<int> ChipReader::Sources::busiest(const CPUCluster &cluster,
                                                const std::vector<CoreTicks> &now) const
{
    std::optional<int> found;
    std::uint32_t most = 0;
    for (const int cpu : cluster.cpus) {
        const auto place = static_cast<std::size_t>(cpu);
        if (place >= now.size() || place >= lastTicks.size())
            continue;
        const CoreTicks &before = lastTicks[place];
        const std::uint32_t active = now[place].user - before.user + now[place].system
            - before.system + now[place].nice - before.nice;
        if (active > most) {
            most = active;
            found = cpu;
        }
    }
    return found;
}

void ChipReader::Sources::readCPUs(ChipSnapshot &snapshot)
{
    auto now = ticks.read();
    if (!now)
        return;
    for (std::size_t place = 0; place < clusters.size(); ++place)
        snapshot.clusters.push_back(
            frequencies[place].read(busiest(clusters[place].cluster, *now)));
    lastTicks = *now;
    snapshot.cpus = std::move(*now);
}

ChipReader::ChipReader(const std::string &root, Parts parts, std::shared_ptr<GPUWatch> gpus,
                       std::function<double()> clock)
    : m_sources(new Sources{.parts = parts,
                            .gpus = std::move(gpus),
                            .clock = clock,
                            .ticks = CoreTicksReader(root),
                            .packages = PackageEnergy(root, clock)})
{
    if (!parts.cpu)
        return;
    m_sources->clusters = readCPUClusterStates(root);
    for (const CPUClusterStates &cluster : m_sources->clusters)
        m_sources->frequencies.emplace_back(cluster);
}

ChipReader::~ChipReader() = default;

bool ChipReader::hasAnything() const
{
    const Parts &parts = m_sources->parts;
    const bool anyGPU = m_sources->gpus->hasDevices();
    return (parts.cpu && !m_sources->clusters.empty()) || (parts.gpu && anyGPU)
        || (parts.energy && (anyGPU || m_sources->packages.exists()));
}

ChipSnapshot ChipReader::read()
{
    ChipSnapshot snapshot = {.seconds = m_sources->clock()};
    if (m_sources->parts.cpu)
        m_sources->readCPUs(snapshot);
    if (m_sources->parts.energy)
        snapshot.packages = m_sources->packages.read();
    if (m_sources->parts.gpu || m_sources->parts.energy)
        snapshot.gpus = m_sources->gpus->readings();
    return snapshot;
}

const std::vector<CPUClusterStates> &ChipReader::clusters() const
{
    return m_sources->clusters;
}

} // namespace corvane
