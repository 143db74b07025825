#pragma once

#include <cstdint>
#include <optional>
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
    /// The number of that folder, which changes when the driver is loaded again; 0 without one.
    std::uint64_t cardNumber = 0;
    bool integrated = false;

    friend bool operator==(const GPUDevice &, const GPUDevice &) = default;
};

/// The driver of the device with this folder, by a link; absent where it is none of a GPU.
std::optional<GPUDriver> gpuDriver(const std::string &device);

/// The GPUs of the machine whose kernel files lie below `root`, in the order of their addresses.
std::vector<GPUDevice> findGPUDevices(const std::string &root = "/");

} // namespace corvane
