#pragma once

#include "gpu/GPUDevices_linux.h"
#include "gpu/GPUReading.h"
#include "platform/KernelFile_linux.h"
#include "threads/OneThread.h"

#include <optional>
#include <vector>

namespace corvane {

/// The driver's files with the load, clock, power and temperatures of one GPU. Create and read only
/// while the GPU is awake: almost every access to these files wakes it. Owned by the GPU
/// watch, used on one thread.
class GPUFiles {
public:
    explicit GPUFiles(const GPUDevice &device);

    GPUReading read(double now);

private:
    void addLoad(const GPUDevice &device);
    void addSensors(const GPUDevice &device);

    GPUDevice m_device;
    std::optional<KernelFile> m_busyPercent = {};
    std::optional<KernelFile> m_idleTime = {};
    std::optional<KernelFile> m_levels = {};      ///< With the present one marked.
    std::optional<KernelFile> m_actualClock = {}; ///< 0 while the GPU rests.
    std::optional<KernelFile> m_requestedClock = {};
    std::optional<KernelFile> m_energy = {};
    std::optional<KernelFile> m_power = {};
    std::vector<KernelFile> m_temperatures = {};
    OneThread m_thread = {};
};

} // namespace corvane
