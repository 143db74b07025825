#pragma once

#include "platform/KernelFile_linux.h"
#include "thermal/TemperatureSensors.h"
#include "threads/OneThread.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// Reads the temperature sensors of a Linux machine's chip: those of its hardware monitoring
/// devices, or a thermal zone where none of them measures the CPU. Used on one thread.
class TemperatureFiles {
public:
    /// `root` is the folder below which the kernel files lie.
    explicit TemperatureFiles(const std::string &root = "/");

    /// Whether this folder of a device, or link to one, is that of a GPU.
    using IsGPU = std::function<bool(const std::string &folder)>;

    /// The sensors that can be read now. The files of GPUs are left to their watch, which reads
    /// their temperatures too.
    std::vector<PartTemperature> read(const IsGPU &isGPU);

private:
    struct Sensor {
        ChipPart part;
        KernelFile file;
    };
    struct Zone {
        ThermalZoneKind kind;
        KernelFile file;
    };

    void scanMonitors(const IsGPU &isGPU);
    void scanZones();
    std::vector<PartTemperature> readMonitors();
    std::optional<PartTemperature> readZones();

    std::string m_root;
    std::vector<Sensor> m_sensors = {};
    std::vector<Zone> m_zones = {};
    int m_readsUntilScan = 0;
    OneThread m_thread = {};
};

} // namespace corvane
