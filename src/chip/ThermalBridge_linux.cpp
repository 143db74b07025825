#include "chip/ThermalBridge.h"

#include "chip/TemperatureSensors.h"
#include "gpu/GPUText.h"
#include "gpu/GPUWatch.h"
#include "platform/KernelFile.h"
#include "platform/KernelFolder.h"
#include "platform/KernelText.h"

#include <algorithm>
#include <filesystem>

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr int readsBetweenScans = 60; ///< Drivers come and go, but rarely.

struct Sensor {
    std::string name;
    KernelFile file;
};

struct Zone {
    ThermalZoneKind kind;
    KernelFile file;
};

/// "temp3_input" → "temp3"; nothing for any other file.
std::optional<std::string> sensorStem(const std::string &name)
{
    constexpr std::string_view suffix = "_input";
    if (!name.starts_with("temp") || !name.ends_with(suffix))
        return std::nullopt;
    return name.substr(0, name.size() - suffix.size());
}

std::string trimmedFile(const std::string &path)
{
    return std::string(trimmed(readKernelFile(path).value_or(std::string())));
}

} // namespace

struct ThermalBridge::Sensors {
    std::string root;
    std::shared_ptr<GPUWatch> gpus;
    std::vector<Sensor> sensors = {};
    std::vector<Zone> zones = {};
    int readsUntilScan = 0;

    bool isGPU(const std::string &monitor) const;
    void scanMonitors();
    void scanZones();
    bool readMonitors(std::map<std::string, double> &temperatures);
    void readZones(std::map<std::string, double> &temperatures);
    void readGPUs(std::map<std::string, double> &temperatures);
};

/// By the device that it monitors; even its name is for the watch alone.
bool ThermalBridge::Sensors::isGPU(const std::string &monitor) const
{
    std::error_code error;
    const fs::path device = fs::canonical(monitor + "device", error);
    return !error && gpus->isGPU(device.string());
}

void ThermalBridge::Sensors::scanMonitors()
{
    std::vector<SensorDevice> devices;
    std::vector<std::vector<std::string>> paths;
    const std::string folder = root + "/sys/class/hwmon/";
    for (const std::string &monitor : namesInFolder(folder)) {
        const std::string path = folder + monitor + "/";
        if (isGPU(path))
            continue;
        const std::string driver = trimmedFile(path + "name");
        if (!tellsOfChip(driver))
            continue;
        SensorDevice &device = devices.emplace_back(SensorDevice{.driver = driver});
        auto &ofDevice = paths.emplace_back();
        for (const std::string &name : namesInFolder(path)) {
            const auto stem = sensorStem(name);
            if (!stem)
                continue;
            device.labels.push_back(trimmedFile(path + *stem + "_label"));
            ofDevice.push_back(path + name);
        }
    }

    sensors.clear();
    const auto names = sensorNames(devices);
    for (std::size_t device = 0; device < names.size(); ++device) {
        for (std::size_t sensor = 0; sensor < names[device].size(); ++sensor) {
            if (!names[device][sensor].empty())
                sensors.push_back({names[device][sensor], KernelFile(paths[device][sensor])});
        }
    }
}

void ThermalBridge::Sensors::scanZones()
{
    zones.clear();
    const std::string folder = root + "/sys/class/thermal/";
    for (const std::string &zone : namesInFolder(folder)) {
        if (!zone.starts_with("thermal_zone"))
            continue;
        if (const auto kind = thermalZoneKind(trimmedFile(folder + zone + "/type")))
            zones.push_back({*kind, KernelFile(folder + zone + "/temp")});
    }
}

/// True when anything told of the CPU or its package.
bool ThermalBridge::Sensors::readMonitors(std::map<std::string, double> &temperatures)
{
    bool any = false;
    for (Sensor &sensor : sensors) {
        const auto text = sensor.file.read();
        const auto degrees = text ? parseMillidegrees(*text) : std::nullopt;
        if (!degrees)
            continue;
        temperatures[sensor.name] = *degrees;
        any = any || !sensor.name.starts_with("GPU");
    }
    return any;
}

/// The first kind of zone that tells anything; the hottest of its zones.
void ThermalBridge::Sensors::readZones(std::map<std::string, double> &temperatures)
{
    for (const ThermalZoneKind kind :
         {ThermalZoneKind::package, ThermalZoneKind::cpu, ThermalZoneKind::board}) {
        std::optional<double> hottest;
        for (Zone &zone : zones) {
            const auto text = zone.kind == kind ? zone.file.read() : std::nullopt;
            const auto degrees = text ? thermalZoneDegrees(kind, *text) : std::nullopt;
            if (degrees)
                hottest = std::max(hottest.value_or(*degrees), *degrees);
        }
        if (!hottest)
            continue;
        temperatures[thermalZoneName(kind)] = *hottest;
        return;
    }
}

/// Numbered behind those of monitoring devices.
void ThermalBridge::Sensors::readGPUs(std::map<std::string, double> &temperatures)
{
    int number = 0;
    for (const Sensor &sensor : sensors)
        number += sensor.name.starts_with("GPU") ? 1 : 0;
    for (const GPUReading &gpu : gpus->readings()) {
        for (const double degrees : gpu.temperatures)
            temperatures["GPU " + std::to_string(++number)] = degrees;
    }
}

ThermalBridge::ThermalBridge(const std::string &root)
    : m_sensors(new Sensors{.root = root, .gpus = GPUWatch::shared(root)})
{
}

ThermalBridge::~ThermalBridge() = default;

std::map<std::string, double> ThermalBridge::readAllTemperatures()
{
    if (m_sensors->readsUntilScan-- == 0) {
        m_sensors->scanMonitors();
        m_sensors->scanZones();
        m_sensors->readsUntilScan = readsBetweenScans;
    }
    std::map<std::string, double> temperatures;
    if (!m_sensors->readMonitors(temperatures))
        m_sensors->readZones(temperatures);
    m_sensors->readGPUs(temperatures);
    return temperatures;
}

} // namespace corvane
