#include "drivers/NPUDevice_linux.h"

#include "platform/KernelFolder_linux.h"

#include <filesystem>

namespace corvane {

namespace {

namespace fs = std::filesystem;

NPUDriver driverNamed(const std::string &name)
{
    if (name == "intel_vpu")
        return NPUDriver::intel;
    return name == "amdxdna" ? NPUDriver::amd : NPUDriver::other;
}

} // namespace

std::optional<NPUDevice> findNPUDevice(const std::string &root)
{
    const std::string folder = root + "/sys/class/accel/";
    for (const std::string &name : namesInFolder(folder)) {
        std::error_code error;
        const fs::path device = fs::canonical(folder + name + "/device", error);
        if (error || !name.starts_with("accel"))
            continue;
        const fs::path driver = fs::read_symlink(device / "driver", error);
        if (!error)
            return NPUDevice{.driver = driverNamed(driver.filename().string()),
                             .folder = device.string()};
    }
    return std::nullopt;
}

} // namespace corvane
