#pragma once

#include "gpu/GPUHandOver.h"
#include "gpuclients/GPUUse.h"
#include "platform/BootClock.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// Which processes hold memory of the GPUs and keep them busy. A GPU that sleeps, or is left alone
/// so that it can fall asleep, is not touched: of the latter the last known memory is returned.
/// What cannot be read is left out. On a Mac that is the memory, which is in the footprint of a
/// process there.
///
/// Owned by the surveys of processes. Safe from any thread; a call may wait for a driver that
/// hangs, and others meanwhile tell nothing.
class GPUClients {
public:
    /// `handOver` tells which GPUs there are. `root` is the folder below which the kernel files lie
    /// and `clock` gives monotonic seconds.
    explicit GPUClients(std::shared_ptr<GPUHandOver> handOver, std::string root = "/",
                        std::function<double()> clock = secondsSinceBoot);
    ~GPUClients();

    /// What drivers tell of the processes of all users.
    std::vector<GPUUse> told();

    /// The same with what the kernel tells of these processes' descriptors, which takes reading
    /// files of each. `told` is what the other function returned. The load is the share of the time
    /// since the call before.
    std::vector<GPUUse> used(std::vector<GPUUse> told, const std::vector<std::int32_t> &pids);

    /// Whether the functions have files of drivers to read, which may keep them waiting.
    bool readsFiles() const;

private:
    struct System;
    std::unique_ptr<System> m_system;
};

} // namespace corvane
