#pragma once

#include "drivers/FileGPUs_linux.h"
#include "gpu/GPUHandOver.h"
#include "gpu/GPUReading.h"
#include "platform/BootClock.h"
#include "records/MachineCoverage.h"
#include "threads/BackgroundReader.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// Reads every GPU of a Linux machine, and its NPU, unless that would wake it or keep it awake.
/// Nothing else may touch their files. Drivers and libraries are asked on other threads, so no call
/// of this class waits for them longer than its patience. Owned by the chip's source, used on one
/// thread.
class GPUWatch {
public:
    /// `root` is the folder below which the kernel files lie. NVIDIA's management library is opened
    /// from `nvidiaLibrary`; an empty name: never. The library is not waited for. `handOver`
    /// receives at each reading which GPUs may be touched. `thread` reads the drivers' files, and
    /// may be shared with other readers of the same user.
    explicit GPUWatch(const std::string &root, std::string nvidiaLibrary = {},
                      std::function<double()> clock = secondsSinceBoot,
                      std::shared_ptr<GPUHandOver> handOver = std::make_shared<GPUHandOver>(),
                      ReaderPatience patience = {},
                      std::shared_ptr<ReaderThread> thread = std::make_shared<ReaderThread>());
    ~GPUWatch();

    /// Asks for the values of this tick, and returns the newest of each GPU that can be read. To be
    /// called once a tick.
    std::vector<GPUReading> read();

    /// What each GPU is and tells, in the order of their addresses. That of a driver which does not
    /// answer stays as it was.
    std::vector<GPUCoverage> coverage() const;

    /// Of the last `read`: absent where the machine has no NPU. One whose driver does not answer
    /// has no values.
    const std::optional<NPUReading> &npu() const;

private:
    struct Devices;
    std::unique_ptr<Devices> m_devices;
};

} // namespace corvane
