#pragma once

#include "gpu/GPUReading.h"
#include "platform/BootClock.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// Reads every GPU once a tick, unless that would wake it or keep it awake. Main thread; shared by
/// those who want the load and those who want the heat, so that both leave the same GPUs alone.
class GPUWatch {
public:
    /// NVIDIA's management library is opened from `nvidiaLibrary`; an empty name: never.
    explicit GPUWatch(const std::string &root, std::string nvidiaLibrary = {},
                      std::function<double()> clock = secondsSinceBoot);
    ~GPUWatch();

    /// The one watch over the machine whose kernel files lie below `root`. Only that of the running
    /// machine opens libraries.
    static std::shared_ptr<GPUWatch> shared(const std::string &root);

    /// The GPUs that could be read in this tick; calls that follow each other at once get the same.
    const std::vector<GPUReading> &readings();

    /// Whether the machine has any GPU that tells something, asleep or not.
    bool hasDevices() const;

    /// Whether this device folder is that of a GPU, whose files are for the watch alone.
    bool isGPU(const std::string &folder) const;

private:
    struct Devices;
    std::unique_ptr<Devices> m_devices;
};

} // namespace corvane
