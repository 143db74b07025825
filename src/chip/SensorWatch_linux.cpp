#include "chip/SensorWatch_linux.h"

#include "chip/SystemPowerWatch_linux.h"
#include "cpu/CPUClusterFiles_linux.h"
#include "cpu/CPUFrequencyFiles_linux.h"
#include "cpu/PackageEnergyFiles_linux.h"
#include "gpu/GPUDevices_linux.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"
#include "thermal/TemperatureFiles_linux.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

constexpr double secondsBetweenSearches = 60;

/// Lists folders of the kernel itself; asks no driver.
bool hasDrivers(const std::string &root)
{
    const auto folders = {"/sys/devices/system/cpu/cpufreq/", "/sys/class/powercap/",
                          "/sys/class/hwmon/", "/sys/class/thermal/", "/sys/class/power_supply/"};
    return std::ranges::any_of(
        folders, [&](const char *folder) { return !namesInFolder(root + folder).empty(); });
}

bool isGPU(const std::string &device)
{
    return gpuDriver(device).has_value();
}

/// In some containers a process serves these.
bool isServed(const std::string &root)
{
    return isMountPoint(root + "/proc/cpuinfo") || isMountPoint(root + "/sys/devices/system/cpu");
}

} // namespace

/// The files themselves. Created and used on one thread.
class SensorWatch::Files {
public:
    explicit Files(std::string root)
        : m_root(std::move(root)),
          m_clusters(std::make_shared<std::vector<CPUCluster>>(readCPUClusters(m_root))),
          m_frequencies(m_clusters->begin(), m_clusters->end()),
          m_packages(m_root, m_clock),
          m_temperatures(m_root),
          m_systemPower(m_root, m_clock)
    {
    }

    Files(const Files &) = delete;
    Files &operator=(const Files &) = delete;

    Value read(double now, const BusiestCPUs &busiest)
    {
        m_now = now;
        const auto reading = std::make_shared<SensorReading>();
        reading->seconds = now;
        reading->clusters = m_clusters;
        for (std::size_t place = 0; place < m_frequencies.size(); ++place)
            reading->cpus.push_back(
                m_frequencies[place].read(place < busiest.size() ? busiest[place] : std::nullopt));
        reading->packages = m_packages.read();
        reading->countsPackages = m_packages.exist();
        reading->temperatures = m_temperatures.read(isGPU);
        reading->systemPower = m_systemPower.read(isGPU);
        return reading;
    }

private:
    std::string m_root;
    double m_now = -std::numeric_limits<double>::infinity();
    std::function<double()> m_clock = [this] { return m_now; };
    std::shared_ptr<const std::vector<CPUCluster>> m_clusters;
    std::vector<CPUFrequencyFiles> m_frequencies; ///< In the order of the clusters.
    PackageEnergyFiles m_packages;
    TemperatureFiles m_temperatures;
    SystemPowerWatch m_systemPower;
};

SensorWatch::SensorWatch(std::string root, std::shared_ptr<ReaderThread> thread)
    : m_root(std::move(root)),
      m_thread(std::move(thread)),
      m_busiest(std::make_shared<Slot<BusiestCPUs>>())
{
}

SensorWatch::~SensorWatch() = default;

/// Drivers may be loaded later than the program starts.
void SensorWatch::searchWhenDue(double now)
{
    if (m_reader || now < m_nextSearch)
        return;
    m_nextSearch = now + secondsBetweenSearches;
    if (!isServed(m_root) && !hasDrivers(m_root)) {
        if (!m_files)
            m_files = std::make_unique<Files>(m_root);
        return;
    }
    m_files.reset();
    const auto open = [root = m_root, busiest = m_busiest] {
        const auto files = std::make_shared<Files>(root);
        return [files, busiest](double instant) { return files->read(instant, busiest->get()); };
    };
    using Reader = BackgroundReader<Value>;
    m_reader = std::make_unique<Reader>(open, Reader::oldestLive, m_thread);
}

std::shared_ptr<const SensorReading> SensorWatch::read(double now, const BusiestCPUs &busiest,
                                                       std::chrono::milliseconds patience)
{
    searchWhenDue(now);
    if (m_files)
        return m_files->read(now, busiest);
    m_busiest->put(busiest);
    m_reader->request(now, patience);
    return m_reader->newest(now).value_or(nullptr);
}

} // namespace corvane
