#include "chip/SensorWatch_linux.h"

#include "chip/SystemPowerWatch_linux.h"
#include "cpu/CPUClusterFiles_linux.h"
#include "cpu/CPUFrequencyFiles_linux.h"
#include "cpu/PackageEnergyFiles_linux.h"
#include "gpu/GPUDevices_linux.h"
#include "platform/KernelFolder_linux.h"
#include "thermal/TemperatureFiles_linux.h"
#include "threads/Mutex.h"

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
        m_gpus.reset();
        const auto reading = std::make_shared<SensorReading>();
        reading->seconds = now;
        reading->clusters = m_clusters;
        for (std::size_t place = 0; place < m_frequencies.size(); ++place)
            reading->cpus.push_back(
                m_frequencies[place].read(place < busiest.size() ? busiest[place] : std::nullopt));
        reading->packages = m_packages.read();
        reading->countsPackages = m_packages.exist();
        reading->temperatures = m_temperatures.read(m_isGPU);
        reading->systemPower = m_systemPower.read(m_isGPU);
        return reading;
    }

private:
    /// Looks for the GPUs at most once a reading, when a reader searches for sensors.
    bool isGPU(const std::string &folder)
    {
        if (!m_gpus)
            m_gpus = findGPUDevices(m_root);
        return std::ranges::find(*m_gpus, folder, &GPUDevice::folder) != m_gpus->end();
    }

    std::string m_root;
    double m_now = -std::numeric_limits<double>::infinity();
    std::function<double()> m_clock = [this] { return m_now; };
    std::optional<std::vector<GPUDevice>> m_gpus = {};
    std::function<bool(const std::string &)> m_isGPU = [this](const std::string &folder) {
        return isGPU(folder);
    };
    std::shared_ptr<const std::vector<CPUCluster>> m_clusters;
    std::vector<CPUFrequencyFiles> m_frequencies; ///< In the order of the clusters.
    PackageEnergyFiles m_packages;
    TemperatureFiles m_temperatures;
    SystemPowerWatch m_systemPower;
};

/// Hands the busiest CPUs of a tick to the reader's thread.
class SensorWatch::BusiestSlot {
public:
    void put(BusiestCPUs busiest)
    {
        const MutexLock lock(m_mutex);
        m_busiest = std::move(busiest);
    }

    BusiestCPUs get()
    {
        const MutexLock lock(m_mutex);
        return m_busiest;
    }

private:
    Mutex m_mutex = {};
    BusiestCPUs m_busiest GUARDED_BY(m_mutex) = {};
};

SensorWatch::SensorWatch(std::string root)
    : m_root(std::move(root)),
      m_busiest(std::make_shared<BusiestSlot>())
{
}

SensorWatch::~SensorWatch() = default;

/// Drivers may be loaded later than the program starts.
void SensorWatch::searchWhenDue(double now)
{
    if (m_reader || now < m_nextSearch)
        return;
    m_nextSearch = now + secondsBetweenSearches;
    if (!hasDrivers(m_root)) {
        if (!m_files)
            m_files = std::make_unique<Files>(m_root);
        return;
    }
    m_files.reset();
    m_reader = std::make_unique<BackgroundReader<Value>>([root = m_root, busiest = m_busiest] {
        const auto files = std::make_shared<Files>(root);
        return [files, busiest](double instant) { return files->read(instant, busiest->get()); };
    });
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
