#include "cpu/PackageEnergyFiles_linux.h"

#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"
#include "platform/KernelText.h"

#include <limits>
#include <map>
#include <string_view>

namespace corvane {

namespace {

constexpr double secondsBetweenTries = 60;

struct Zone {
    std::string path;
    EnergyPart part;
    std::string name;
    std::uint64_t range;
    KernelFile energy;
    bool isRefused = false;
    double nextOpening = -std::numeric_limits<double>::infinity();
};

using ZoneNames = std::map<std::string, std::string>; ///< What each zone is about.

ZoneNames readZones(const std::string &folder)
{
    ZoneNames zones;
    for (const std::string &zone : namesInFolder(folder)) {
        if (const auto name = readKernelFile(folder + "/" + zone + "/name"))
            zones[zone] = trimmed(*name);
    }
    return zones;
}

std::vector<std::string> packageZones(const ZoneNames &zones, const std::string &controlType)
{
    std::vector<std::string> packages;
    for (const auto &[zone, name] : zones) {
        if (isPackageZone(zone, name, controlType))
            packages.push_back(zone);
    }
    return packages;
}

/// The zone of this name inside a package; empty without one.
std::string zoneInside(const ZoneNames &zones, const std::string &package, std::string_view name)
{
    for (const auto &[zone, zoneName] : zones) {
        if (zoneName == name && isInsideZone(zone, package))
            return zone;
    }
    return {};
}

} // namespace

struct PackageEnergyFiles::Zones {
    std::string folder;
    std::function<double()> clock;
    std::vector<Zone> zones = {};
    double nextScan = -std::numeric_limits<double>::infinity();

    void scan()
    {
        const ZoneNames names = readZones(folder);
        // A second register counts the same packages: only one of the two is read.
        std::vector<std::string> packages = packageZones(names, "intel-rapl");
        if (packages.empty())
            packages = packageZones(names, "intel-rapl-mmio");
        for (const std::string &package : packages) {
            add(package, EnergyPart::package);
            addParts(names, package);
        }
    }

    /// Only chips with graphics count both parts. AMD's count a "core" alone, and it is a single
    /// one.
    void addParts(const ZoneNames &names, const std::string &package)
    {
        const std::string cores = zoneInside(names, package, "core");
        const std::string graphics = zoneInside(names, package, "uncore");
        if (cores.empty() || graphics.empty())
            return;
        add(cores, EnergyPart::cores);
        add(graphics, EnergyPart::graphics);
    }

    void add(const std::string &name, EnergyPart part)
    {
        const std::string path = folder + "/" + name;
        const std::string range = readTrimmedFile(path + "/max_energy_range_uj");
        zones.push_back({.path = path + "/energy_uj",
                         .part = part,
                         .name = name,
                         .range = parseUnsigned(range).value_or(0),
                         .energy = KernelFile(path + "/energy_uj")});
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
        if (now >= zone.nextOpening) {
            // An open file stays readable when an administrator takes the permission back.
            zone.energy = KernelFile(zone.path);
            zone.isRefused = false;
            zone.nextOpening = now + secondsBetweenTries;
        }
        if (zone.isRefused)
            continue;
        const auto text = zone.energy.read();
        if (!text)
            zone.isRefused = true;
        else if (const auto microjoules = parseUnsigned(trimmed(*text)))
            readings.push_back({zone.name, *microjoules, zone.range, zone.part});
    }
    return readings;
}

bool PackageEnergyFiles::exist() const
{
    return !m_zones->zones.empty();
}

} // namespace corvane
