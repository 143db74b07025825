#pragma once

#include "gpu/GPUProcessUse.h"
#include "records/GPUMetrics.h"
#include "records/MachineCoverage.h"
#include "threads/OneThread.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What NVIDIA's management library reports about one GPU. What it does not support is absent.
struct NvidiaDeviceReading {
    std::string address = {};                ///< On the PCI bus, as the library writes it.
    std::string name = {};                   ///< UTF-8; empty when unknown.
    std::optional<double> busyFraction = {}; ///< 0…1
    std::optional<int> performanceState = {};
    std::optional<double> megahertz = {};   ///< Of the graphics clock.
    std::optional<double> temperature = {}; ///< Degrees Celsius.
    std::optional<double> watts = {};
    std::optional<std::uint64_t> millijoules = {}; ///< Grows from the start of the driver.
    std::optional<GPULimit> limit = {};            ///< Absent: none, or not known.

    /// It has no memory of its own but uses the machine's.
    bool usesSystemMemory = false;
    std::optional<std::uint64_t> memoryTotal = {}; ///< Bytes; absent for the machine's memory.
    std::optional<std::uint64_t> memoryUsed = {};  ///< Bytes.

    /// Absent when it was not asked for, or is not known.
    std::optional<std::vector<GPUProcessUse>> processes = {};

    Coverage load = Coverage::unpublished;
    Coverage power = Coverage::unpublished;
    Coverage memory = Coverage::unpublished;
};

/// NVIDIA's management library, opened at run time. Any of its calls may take seconds, and while it
/// is open no GPU of NVIDIA falls asleep. Used on one thread, which is not the main one.
class NvidiaLibrary {
public:
    /// Opens it, if it can be opened.
    explicit NvidiaLibrary(const std::string &path);
    ~NvidiaLibrary();
    NvidiaLibrary(const NvidiaLibrary &) = delete;
    NvidiaLibrary &operator=(const NvidiaLibrary &) = delete;

    /// `known` while the library works; else why it could not be opened, or has to be closed.
    Coverage coverage() const { return m_coverage; }

    /// Every GPU, except those that were lost; absent when the library is not open, or has to be
    /// closed because it lost its driver or all GPUs. `now` is in monotonic seconds.
    std::optional<std::vector<NvidiaDeviceReading>> read(double now, bool withProcesses = false);

    /// Whether the last reading left a GPU out because it was lost. Only a library that is opened
    /// anew finds it again.
    bool hasLostGPU() const { return m_lostGPU; }

private:
    struct Device;
    struct Functions;
    NvidiaDeviceReading readDevice(Device &device, double now, bool withProcesses);

    std::unique_ptr<Functions> m_functions;
    std::vector<Device> m_devices;
    Coverage m_coverage = Coverage::noLibrary;
    bool m_lostGPU = false;
    OneThread m_thread = {};
};

} // namespace corvane
