#pragma once

#include "gpu/GPUHandOver.h"
#include "gpu/GPUReading.h"
#include "platform/BootClock.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// Reads every GPU of a Linux machine, unless that would wake it or keep it awake. Nothing else may
/// touch their files. Owned by the chip's source, used on one thread.
class GPUWatch {
public:
    /// `root` is the folder below which the kernel files lie. NVIDIA's management library is opened
    /// from `nvidiaLibrary`; an empty name: never. `handOver` is told at each reading which GPUs
    /// may be touched.
    explicit GPUWatch(const std::string &root, std::string nvidiaLibrary = {},
                      std::function<double()> clock = secondsSinceBoot,
                      std::shared_ptr<GPUHandOver> handOver = std::make_shared<GPUHandOver>());
    ~GPUWatch();

    /// The GPUs that can be read in this tick. To be called once a tick.
    std::vector<GPUReading> read();

    /// Whether the machine has any GPU that can be read, asleep or not.
    bool hasDevices() const;

    /// Whether this device folder is that of a GPU, so that its files are for the watch alone.
    bool isGPU(const std::string &folder) const;

private:
    struct Devices;
    std::unique_ptr<Devices> m_devices;
};

} // namespace corvane
