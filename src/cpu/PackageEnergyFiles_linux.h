#pragma once

#include "cpu/PackageEnergy.h"
#include "platform/BootClock.h"
#include "threads/OneThread.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// Reads the energy counter of every CPU package of a Linux machine, and those of its cores and its
/// GPU where it counts both. By default the kernel lets only root read them, which an administrator
/// may change while the program runs, in both directions: a counter is opened anew once a minute,
/// and one that was refused is not tried before. Owned by one reader, used on one thread.
class PackageEnergyFiles {
public:
    /// `root` is the folder below which the kernel files lie.
    explicit PackageEnergyFiles(const std::string &root = "/",
                                std::function<double()> clock = secondsSinceBoot);
    ~PackageEnergyFiles();

    /// The counters that can be read now; empty when there is none.
    std::vector<PackageEnergyReading> read();

    /// Whether the kernel counts the energy of any package, readable or not.
    bool exist() const;

private:
    struct Zones;
    std::unique_ptr<Zones> m_zones;
    OneThread m_thread = {};
};

} // namespace corvane
