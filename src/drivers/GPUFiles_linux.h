#pragma once

#include "drivers/APUMetrics.h"
#include "gpu/GPUDevices_linux.h"
#include "gpu/GPUReading.h"
#include "platform/KernelFile_linux.h"
#include "threads/OneThread.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// The driver's files with the load, clock, memory, power and temperatures of one GPU. Create and
/// read only while the GPU is awake: almost every access to these files wakes it. Owned by
/// `FileGPUs`, used on one thread.
class GPUFiles {
public:
    explicit GPUFiles(const GPUDevice &device);

    GPUReading read(double now);

    /// How many files the driver has for it.
    std::size_t count() const;

    /// All memory of the GPU in bytes, its share of the machine's included; absent when its driver
    /// does not tell. Known from the first reading on.
    std::optional<std::uint64_t> memoryTotal() const { return m_memoryTotal; }

    /// Of an integrated GPU: the part of the total that is set aside for it.
    std::optional<std::uint64_t> memoryOwn() const { return m_memoryOwn; }

    /// Of an APU: what its firmware measures, in the newest reading. Without the NPU's watts where
    /// their unit is not that of the package's sensor.
    const std::optional<APUMetrics> &apuMetrics() const { return m_apuMetrics; }

private:
    void addLoad(const GPUDevice &device);
    void addMemory(const GPUDevice &device);
    void addSensors(const GPUDevice &device);
    void readMemoryTotals();
    void readMemory(GPUReading &reading);
    void readPower(GPUReading &reading);
    void readPackage(GPUReading &reading);

    GPUDevice m_device;
    QString m_name; ///< In all readings.
    std::optional<KernelFile> m_busyPercent = {};
    std::optional<KernelFile> m_idleTime = {};
    std::optional<KernelFile> m_levels = {};      ///< With the present one marked.
    std::optional<KernelFile> m_actualClock = {}; ///< 0 while the GPU rests.
    std::optional<KernelFile> m_requestedClock = {};
    std::vector<std::string> m_ownMemoryTotals = {}; ///< One a piece of its own memory.
    std::optional<std::string> m_sharedMemoryTotal = {};
    std::optional<KernelFile> m_ownMemoryUsed = {};
    std::optional<KernelFile> m_sharedMemoryUsed = {};
    std::optional<std::uint64_t> m_memoryTotal = {};
    std::optional<std::uint64_t> m_memoryOwn = {};
    std::optional<KernelFile> m_packageParts = {};
    std::optional<APUMetrics> m_apuMetrics = {};
    std::optional<KernelFile> m_energy = {};
    std::optional<KernelFile> m_power = {};
    std::vector<KernelFile> m_temperatures = {};
    OneThread m_thread = {};
};

} // namespace corvane
