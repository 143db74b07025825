#include "cpu/PackageEnergyFiles_linux.h"

#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"
#include "platform/KernelText.h"

#include <limits>

namespace corvane {

namespace {

constexpr double secondsBetweenTries = 60;

struct Zone {
    std::string name;
    std::uint64_t range;
    KernelFile energy;
    double nextTry = -std::numeric_limits<double>::infinity();
};

std::vector<std::string> packageZones(const std::string &folder, const std::string &controlType)
{
    std::vector<std::string> zones;
    for (const std::string &zone : namesInFolder(folder)) {
        const auto name = readKernelFile(folder + "/" + zone + "/name");
        if (name && isPackageZone(zone, *name, controlType))
            zones.push_back(zone);
    }
    return zones;
}

} // namespace

struct PackageEnergyFiles::Zones {
    std::string folder;
    std::function<double()> clock;
    std::vector<Zone> zones = {};
    double nextScan = -std::numeric_limits<double>::infinity();

    void scan()
    {
        // A second register counts the same packages: only one of the two is read.
        std::vector<std::string> names = packageZones(folder, "intel-rapl");
        if (names.empty())
            names = packageZones(folder, "intel-rapl-mmio");
        for (const std::string &name : names) {
            const std::string path = folder + "/" + name;
            const std::string range = readTrimmedFile(path + "/max_energy_range_uj");
            zones.push_back({.name = name,
                             .range = parseUnsigned(range).value_or(0),
                             .energy = KernelFile(path + "/energy_uj")});
        }
    }

    /// The driver may be loaded later than the program.
    void scanWhenDue(double now)
    {
        if (!zones.empty() || now < nextScan)
            return;
        nextScan = now + secondsBetweenTries;
        scan();
    }
};

PackageEnergyFiles::PackageEnergyFiles(const std::string &root, std::function<double()> clock)
    : m_zones(new Zones{.folder = root + "/sys/class/powercap", .clock = std::move(clock)})
{
    m_zones->scanWhenDue(m_zones->clock());
}

PackageEnergyFiles::~PackageEnergyFiles() = default;

std::vector<PackageEnergyReading> PackageEnergyFiles::read()
{
    m_thread.check();
    const double now = m_zones->clock();
    m_zones->scanWhenDue(now);
    std::vector<PackageEnergyReading> readings;
    for (Zone &zone : m_zones->zones) {
        if (now < zone.nextTry)
            continue;
        const auto text = zone.energy.read();
        if (!text)
            zone.nextTry = now + secondsBetweenTries;
        else if (const auto microjoules = parseUnsigned(trimmed(*text)))
            readings.push_back({zone.name, *microjoules, zone.range});
    }
    return readings;
}

bool PackageEnergyFiles::exist() const
{
    return !m_zones->zones.empty();
}

} // namespace corvane
