#include "chip/SystemPowerWatch_linux.h"

#include "gpu/GPUText.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

constexpr double secondsBetweenScans = 60;
constexpr double secondsBetweenReads = 5;

/// The file of a sensor with this label; empty without one.
std::string labelledFile(const std::string &monitor, std::string_view label)
{
    for (const std::string &name : namesInFolder(monitor)) {
        constexpr std::string_view suffix = "_label";
        if (name.starts_with("power") && name.ends_with(suffix)
            && readTrimmedFile(monitor + name) == label)
            return monitor + name.substr(0, name.size() - suffix.size()) + "_input";
    }
    return {};
}

void appendMonitor(std::vector<SystemPowerFiles> &sources, const std::string &monitor)
{
    const std::string driver = readTrimmedFile(monitor + "name");
    SystemPowerFiles files;
    if (driver == "macsmc_hwmon")
        files = {SystemPowerSource::systemController, labelledFile(monitor, "Total System Power")};
    else if (driver == "corsairpsu")
        files = {SystemPowerSource::powerSupply, labelledFile(monitor, "power total")};
    else if (driver == "power_meter")
        files = {SystemPowerSource::powerMeter, monitor + "power1_average"};
    if (!files.path.empty())
        sources.push_back(std::move(files));
}

std::vector<SystemPowerFiles> findSources(const std::string &root,
                                          const SystemPowerWatch::IsGPU &isGPU)
{
    std::vector<SystemPowerFiles> sources;
    const std::string monitors = root + "/sys/class/hwmon/";
    for (const std::string &name : namesInFolder(monitors)) {
        const std::string monitor = monitors + name + "/";
        if (!isGPU(monitor + "device"))
            appendMonitor(sources, monitor);
    }
    const std::string supplies = root + "/sys/class/power_supply/";
    for (const std::string &name : namesInFolder(supplies)) {
        const std::string folder = supplies + name;
        // That of a mouse or headset powers only itself.
        if (readTrimmedFile(folder + "/type") == "Battery"
            && readTrimmedFile(folder + "/scope") != "Device")
            sources.push_back({SystemPowerSource::battery, folder});
    }
    std::ranges::stable_sort(sources, {}, &SystemPowerFiles::source);
    return sources;
}

std::optional<double> readWatts(const SystemPowerFiles &files)
{
    if (files.source != SystemPowerSource::battery)
        return parseMicrowatts(readTrimmedFile(files.path));
    const std::string status = readTrimmedFile(files.path + "/status");
    const std::string power = readTrimmedFile(files.path + "/power_now");
    const std::string current = readTrimmedFile(files.path + "/current_now");
    const std::string voltage = readTrimmedFile(files.path + "/voltage_now");
    return batteryWatts({.status = status, .power = power, .current = current, .voltage = voltage});
}

/// The best source that has a value. Several batteries add up.
std::optional<SystemPower> readBest(const std::vector<SystemPowerFiles> &sources)
{
    std::optional<SystemPower> power;
    for (const SystemPowerFiles &files : sources) {
        const auto watts = readWatts(files);
        if (!watts)
            continue;
        if (files.source != SystemPowerSource::battery)
            return SystemPower{.watts = *watts, .source = files.source};
        power = {.watts = *watts + (power ? power->watts : 0), .source = files.source};
    }
    return power;
}

} // namespace

SystemPowerWatch::SystemPowerWatch(std::string root, std::function<double()> clock)
    : m_root(std::move(root)),
      m_clock(std::move(clock))
{
}

void SystemPowerWatch::scanWhenDue(double now, const IsGPU &isGPU)
{
    if (now < m_nextScan)
        return;
    m_nextScan = now + secondsBetweenScans;
    std::vector<SystemPowerFiles> sources = findSources(m_root, isGPU);
    if (sources == m_sources)
        return;
    m_sources = std::move(sources);
    m_nextRead = now;
}

std::optional<SystemPower> SystemPowerWatch::read(const IsGPU &isGPU)
{
    m_thread.check();
    const double now = m_clock();
    scanWhenDue(now, isGPU);
    if (now >= m_nextRead) {
        m_nextRead = now + secondsBetweenReads;
        m_power = readBest(m_sources);
    }
    return m_power;
}

} // namespace corvane
