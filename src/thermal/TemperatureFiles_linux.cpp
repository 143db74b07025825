#include "thermal/TemperatureFiles_linux.h"

#include "platform/KernelFolder_linux.h"
#include "platform/KernelText.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int readsBetweenScans = 60; ///< Drivers come and go, but rarely.

/// "temp3_input" → "temp3"; absent for any other file.
std::optional<std::string> sensorStem(const std::string &name)
{
    constexpr std::string_view suffix = "_input";
    if (!name.starts_with("temp") || !name.ends_with(suffix))
        return std::nullopt;
    return name.substr(0, name.size() - suffix.size());
}

} // namespace

TemperatureFiles::TemperatureFiles(const std::string &root) : m_root(root) { }

std::vector<PartTemperature> TemperatureFiles::read(const IsGPU &isGPU)
{
    m_thread.check();
    if (m_readsUntilScan-- == 0) {
        scanMonitors(isGPU);
        scanZones();
        m_readsUntilScan = readsBetweenScans;
    }
    std::vector<PartTemperature> temperatures = readMonitors();
    const auto isOfGPU = [](const PartTemperature &sensor) { return sensor.part == ChipPart::gpu; };
    if (std::ranges::all_of(temperatures, isOfGPU)) {
        if (const auto zone = readZones())
            temperatures.push_back(*zone);
    }
    return temperatures;
}

void TemperatureFiles::scanMonitors(const IsGPU &isGPU)
{
    m_sensors.clear();
    const std::string folder = m_root + "/sys/class/hwmon/";
    for (const std::string &monitor : namesInFolder(folder)) {
        const std::string path = folder + monitor + "/";
        if (isGPU(path + "device")) // Reading even its name could wake a GPU.
            continue;
        SensorDevice device = {.driver = readTrimmedFile(path + "name")};
        if (!isChipDriver(device.driver))
            continue;
        std::vector<std::string> files;
        for (const std::string &name : namesInFolder(path)) {
            const auto stem = sensorStem(name);
            if (!stem)
                continue;
            device.labels.push_back(readTrimmedFile(path + *stem + "_label"));
            files.push_back(path + name);
        }
        const auto parts = sensorParts(device);
        for (std::size_t sensor = 0; sensor < parts.size(); ++sensor) {
            if (parts[sensor])
                m_sensors.push_back({*parts[sensor], KernelFile(files[sensor])});
        }
    }
}

void TemperatureFiles::scanZones()
{
    m_zones.clear();
    const std::string folder = m_root + "/sys/class/thermal/";
    for (const std::string &zone : namesInFolder(folder)) {
        if (!zone.starts_with("thermal_zone"))
            continue;
        if (const auto kind = thermalZoneKind(readTrimmedFile(folder + zone + "/type")))
            m_zones.push_back({*kind, KernelFile(folder + zone + "/temp")});
    }
}

std::vector<PartTemperature> TemperatureFiles::readMonitors()
{
    std::vector<PartTemperature> temperatures;
    for (Sensor &sensor : m_sensors) {
        const auto text = sensor.file.read();
        if (const auto degrees = text ? parseMillidegrees(*text) : std::nullopt)
            temperatures.push_back({sensor.part, *degrees});
    }
    return temperatures;
}

/// The hottest zone of the best kind that has a value. Worse kinds are not read: firmware may take
/// long for them.
std::optional<PartTemperature> TemperatureFiles::readZones()
{
    for (const ThermalZoneKind kind :
         {ThermalZoneKind::package, ThermalZoneKind::cpu, ThermalZoneKind::board}) {
        std::optional<double> hottest;
        for (Zone &zone : m_zones) {
            const auto text = zone.kind == kind ? zone.file.read() : std::nullopt;
            const auto degrees = text ? thermalZoneDegrees(kind, *text) : std::nullopt;
            if (degrees)
                hottest = std::max(hottest.value_or(*degrees), *degrees);
        }
        if (hottest)
            return PartTemperature{thermalZonePart(kind), *hottest};
    }
    return std::nullopt;
}

} // namespace corvane
