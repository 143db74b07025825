#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane {

enum class GPUDriver { amdgpu, i915, xe, nouveau, nvidia };

/// A GPU whose driver publishes values. Finding it opens none of its files: that might wake it.
struct GPUDevice {
    GPUDriver driver = GPUDriver::amdgpu;
    std::string address = {}; ///< On the PCI bus, as "0000:01:00.0"; empty when hidden.
    std::string folder = {};  ///< Of the device; empty when the system hides it.
    std::string card = {};    ///< Folder of its display node; empty when it has none.
    bool integrated = false;

    friend bool operator==(const GPUDevice &, const GPUDevice &) = default;
};

/// The GPUs of the machine whose kernel files lie below `root`, in the order of their addresses.
std::vector<GPUDevice> findGPUDevices(const std::string &root = "/");

} // namespace corvane
