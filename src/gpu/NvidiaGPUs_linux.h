#pragma once

#include "gpu/GPUHandOver.h"
#include "gpu/GPUQuietTime_linux.h"
#include "gpu/GPUReading.h"
#include "gpu/GPUSleepGate.h"
#include "gpu/NvidiaReader_linux.h"
#include "platform/KernelFile_linux.h"
#include "records/MachineCoverage.h"
#include "threads/OneThread.h"

#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// All GPUs of NVIDIA, which its management library opens and closes together: it is opened when
/// all of them are awake, and closed so that they may fall asleep. Owned by the GPU watch, used on
/// one thread.
class NvidiaGPUs {
public:
    /// `library` is the management library's name; empty: it is never opened. `root` is the folder
    /// below which the kernel files lie.
    NvidiaGPUs(std::string library, std::function<double()> clock, std::string root = "/");

    /// Sets the devices that the machine has now.
    void setDevices(const std::vector<GPUDevice> &devices);

    /// Appends the newest reading of each GPU, and asks for the next. None without such a reading,
    /// or while a GPU is asleep or to fall asleep. `withProcesses`: asks for the processes too.
    void appendReadings(std::vector<GPUReading> &readings, double now, bool withProcesses = false);

    /// In the place of a reading where nothing shows one: closes the library, which takes memory.
    void rest();

    /// Appends what others may know of each GPU, with the processes that were read last. There are
    /// no files about them that others could read.
    void appendAccess(std::vector<GPUAccess> &gpus) const;

    /// What each GPU is and tells at the moment, in the order of their addresses. Its name and its
    /// amount of memory stay known once they were read. A GPU whose first reading is awaited counts
    /// as known.
    const std::vector<GPUCoverage> &coverage() const { return m_coverage; }

private:
    struct Member {
        GPUDevice device;
        KernelFile runtimeStatus;
        GPUQuietTime quietTime = {};
        bool awake = true; ///< By the last look at it.
    };

    struct Processes {
        double seconds = 0; ///< When they were read.
        std::vector<GPUProcessUse> list = {};
    };

    bool areAwake();
    void keepProcesses(const NvidiaReading &reading, double now);
    void setCoverage(Coverage coverage);
    void setCoverageWhileAsleep();
    void setCoverage(const NvidiaReading &reading);
    GPUCoverage &coverageOf(const std::string &device);
    std::optional<std::uint64_t> machineMemory();
    bool startQuietTimeIfIdle(const NvidiaReading &reading, double now);
    std::optional<double> longestQuietSeconds(double now);
    void closeLibrary();

    std::string m_library;
    std::function<double()> m_clock;
    std::string m_root;
    std::vector<Member> m_members = {};
    std::vector<GPUCoverage> m_coverage = {};
    GPUAccess::State m_state = GPUAccess::State::asleep; ///< Until they are read.
    std::map<std::string, Processes> m_processes = {};   ///< By device.
    std::optional<std::uint64_t> m_machineMemory = {};   ///< Bytes; read when it is first needed.
    GPUSleepGate m_gate = {};
    std::unique_ptr<NvidiaReader> m_reader = {}; ///< Made when the GPUs are first seen awake.
    bool m_mayBeOpen = false;                    ///< Whether the library may be open.
    double m_lastSeconds = -std::numeric_limits<double>::infinity(); ///< Of the last reading.
    OneThread m_thread = {};
};

} // namespace corvane
