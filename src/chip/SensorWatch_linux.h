#pragma once

#include "chip/SystemPower.h"
#include "cpu/CPUClusters.h"
#include "cpu/PackageEnergy.h"
#include "thermal/ChipTemperatures.h"
#include "threads/BackgroundReader.h"
#include "threads/Slot.h"

#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What the drivers of a Linux machine's chip and sensors answered at one instant, GPUs apart.
struct SensorReading {
    double seconds = 0; ///< When it was asked for.
    /// Never null; the same in all readings of a watch.
    std::shared_ptr<const std::vector<CPUCluster>> clusters = {};
    std::vector<CPUClusterReading> cpus = {}; ///< In the order of the clusters.
    std::vector<PackageEnergyReading> packages = {};
    bool countsPackages = false; ///< The kernel counts the energy of a package, readable or not.
    std::vector<PartTemperature> temperatures = {};
    std::optional<SystemPower> systemPower = {};
};

/// The busiest CPU of each cluster, in their order; absent where none was active.
using BusiestCPUs = std::vector<std::optional<int>>;

/// Reads frequencies, energy, temperatures and the power of the whole machine. Drivers and firmware
/// answer these files, sometimes late or never: another thread reads them, and nobody waits for it
/// longer than the patience that is passed. A machine without any such driver, as most virtual
/// ones, needs no thread for them. Owned by the chip's source, used on one thread.
class SensorWatch {
public:
    /// `root` is the folder below which the kernel files lie.
    /// `thread` reads them, and may be shared with other readers of the same user.
    explicit SensorWatch(std::string root,
                         std::shared_ptr<ReaderThread> thread = std::make_shared<ReaderThread>());
    ~SensorWatch();

    /// Asks for a reading and returns the newest one; null when there is none, or when it is older
    /// than 2.5 s. To be called once a tick.
    std::shared_ptr<const SensorReading> read(double now, const BusiestCPUs &busiest,
                                              std::chrono::milliseconds patience);

private:
    using Value = std::shared_ptr<const SensorReading>;
    class Files;

    void searchWhenDue(double now);

    std::string m_root;
    std::unique_ptr<Files> m_files; ///< Null once there is a reader.
    std::shared_ptr<ReaderThread> m_thread;
    std::shared_ptr<Slot<BusiestCPUs>> m_busiest; ///< Shared with the thread.
    std::unique_ptr<BackgroundReader<Value>> m_reader = {};
    double m_nextSearch = -std::numeric_limits<double>::infinity();
};

} // namespace corvane
