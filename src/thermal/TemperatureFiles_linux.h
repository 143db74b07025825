#pragma once

#include "gpu/GPUWatch_linux.h"
#include "platform/KernelFile_linux.h"
#include "thermal/TemperatureSensors.h"
#include "threads/OneThread.h"

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

    /// The sensors that can be read now. The files of GPUs are left to their watch, which reads
    /// their temperatures too.
    std::vector<PartTemperature> read(const GPUWatch &gpus);

private:
    struct Sensor {
        ChipPart part;
        KernelFile file;
    };
    struct Zone {
        ThermalZoneKind kind;
        KernelFile file;
    };

    void scanMonitors(const GPUWatch &gpus);
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
