#pragma once

#include <optional>
#include <string>

namespace corvane {

enum class NPUDriver { intel, amd, other };

/// A unit for neural networks that the kernel lists among the accelerators.
struct NPUDevice {
    NPUDriver driver = NPUDriver::other;
    std::string folder = {}; ///< Of the device.

    friend bool operator==(const NPUDevice &, const NPUDevice &) = default;
};

/// The first NPU of the machine whose kernel files lie below `root`; absent where there is none.
/// Opens no file of it.
std::optional<NPUDevice> findNPUDevice(const std::string &root = "/");

} // namespace corvane
